/// What becomes of each address of a sweep, as `--outcomes` tells it.
#include "tests/network/Devices.h"
#include "tests/network/harness/Lab.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Rights.h"
#include "tests/network/harness/Snmpd.h"
#include "tests/network/harness/TestNetwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace NetworkTests;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

namespace {

/// Sweeps whose outcomes are read back.
class OutcomeSweep : public testing::Test {
protected:
    using Outcomes = std::map<std::string, std::string>; // by last octet; with the problem if there is one

    Finished sweep(const std::vector<std::string>& arguments, const TestNetwork* network = nullptr)
    {
        Sweep sweep{.arguments = arguments, .network = network};
        sweep.arguments.insert(sweep.arguments.end(), {"--outcomes", file_});
        return run(discoverCommand(sweep, folder_ / "settings.db"), sweepBound);
    }

    std::vector<std::pair<std::string, std::string>> outcomes() const
    {
        std::vector<std::pair<std::string, std::string>> read;
        std::ifstream stream(file_);
        for (std::string line; std::getline(stream, line);) {
            const Document document = Document::parse(line);
            const std::string ip = document.at("ip");
            const std::string problem = document.at("problem");
            read.emplace_back(ip.substr(ip.rfind('.') + 1),
                              document.at("outcome").get<std::string>() + (problem.empty() ? "" : ": " + problem));
        }
        return read;
    }

    std::vector<std::string> own(const std::string& octets, std::uint16_t port,
                                 const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments = {ownNetwork() + '.' + octets, "--port", std::to_string(port), "-t", "0.5"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return arguments;
    }

private:
    TemporaryFolder folder_;
    const std::string file_ = folder_ / "outcomes.jsonl";
};

TEST_F(OutcomeSweep, TellsPrintersFromOtherDevicesAndFailuresFromSilence)
{
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab({{ownAddress(1), "laser-mono"},
                   {ownAddress(2), "server"},
                   {ownAddress(3), "error-status-5"},
                   {ownAddress(4), "lying-lengths"},
                   {ownAddress(5), "backward-table"},
                   {ownAddress(6), "wrong-community"}},
                  port);
    const Finished result = sweep(own("1-7", port));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(outcomes(),
                ElementsAre(Pair("1", "printer"), Pair("2", "notPrinter"),
                            Pair("3", "failed: the agent answered with error status 5"),
                            Pair("4", "failed: no readable answer in 2 tries of 500 ms"),
                            Pair("5", StartsWith("failed: the agent went back: ")),
                            Pair("6", "failed: no matching answer in 2 tries of 500 ms"), Pair("7", "silent")));
    EXPECT_THAT(result.errors, HasSubstr("\n7 addresses: 1 printer, 1 other device answered, 4 failed, 1 silent\n"));
}

TEST_F(OutcomeSweep, CallsAWrongCommunitySilenceAndSaysSo)
{
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab({{ownAddress(1), "laser-mono"}}, port);
    const Finished result = sweep(own("1", port, {"-c", "perch-4711"}));
    EXPECT_THAT(outcomes(), ElementsAre(Pair("1", "silent")));
    EXPECT_THAT(result.errors, AllOf(HasSubstr("wrong community"), Not(HasSubstr("perch-4711"))));
}

TEST_F(OutcomeSweep, TellsWhereThePortIsClosed)
{
    const Finished result = sweep(own("1-2", freeUdpPort({"0.0.0.0"})));
    EXPECT_THAT(outcomes(), ElementsAre(Pair("1", "portClosed"), Pair("2", "portClosed")));
    EXPECT_THAT(result.errors, HasSubstr("\n2 addresses: 2 port closed\n2 hosts have UDP port "));
}

/// An agent of another make that demands authentication and privacy.
class OutcomesOfVersion3 : public OutcomeSweep {
protected:
    std::vector<std::string> as(const SnmpProfile& profile) const
    {
        return own("1", agent_.endpoint().port, profile.options());
    }

    std::string outcomeOf(const SnmpProfile& profile)
    {
        EXPECT_EQ(sweep(as(profile)).status, 0);
        const auto read = outcomes();
        return read.size() == 1 ? read.front().second : "";
    }

    const SnmpProfile user_ = v3("SHA", "AES");
    const Snmpd agent_{freeEndpoint(), fullPrinter(ownAddress(1)).data, {user_}};
};

TEST_F(OutcomesOfVersion3, NameWhatIsWrongWithTheCredentials)
{
    SnmpProfile stranger = user_;
    stranger.user = "stranger";
    EXPECT_EQ(outcomeOf(stranger), "wrongCredentials: the agent reports: unknown user name");
    SnmpProfile wrongKey = user_;
    wrongKey.authPassword = "perch-4711-auth";
    EXPECT_EQ(outcomeOf(wrongKey),
              "wrongCredentials: the agent reports: wrong digest (authentication password or protocol)");
    SnmpProfile wrongCipher = user_;
    wrongCipher.privacyPassword = "perch-4711-priv";
    EXPECT_THAT(outcomeOf(wrongCipher),
                AllOf(StartsWith("wrongCredentials: "), HasSubstr("wrong privacy password"), Not(HasSubstr("4711"))));
    EXPECT_EQ(outcomeOf(user_), "printer");
}

TEST_F(OutcomesOfVersion3, AdviseOnThem)
{
    SnmpProfile stranger = user_;
    stranger.user = "stranger";
    EXPECT_THAT(sweep(as(stranger)).errors,
                HasSubstr("\n1 address: 1 wrong credentials\n1 device refuses the credentials: check user name"));
}

/// A network beyond which nothing can be reached.
class UnreachableNetworks : public OutcomeSweep {
protected:
    void SetUp() override
    {
        SKIP_UNLESS(TestNetwork::permitted(), "unreachable networks: no right to make a network");
        network_ = std::make_unique<TestNetwork>();
    }

    bool ip(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "ip");
        return run({.words = words, .network = network_.get()}, sweepBound).status == 0;
    }

    std::unique_ptr<TestNetwork> network_;
};

TEST_F(UnreachableNetworks, AreTold)
{
    const Finished result = sweep({"10.9.8.1-2"}, network_.get());
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(outcomes(), ElementsAre(Pair("1", "unreachable"), Pair("2", "unreachable")));
    EXPECT_THAT(result.errors, HasSubstr("\n2 addresses: 2 unreachable\n2 addresses cannot be reached"));
}

TEST_F(UnreachableNetworks, IncludeHostsThatTheirNeighboursDoNotFind)
{
    SKIP_UNLESS(ip({"link", "add", "office", "type", "veth", "peer", "name", "elsewhere"}),
                "unreachable hosts: the system has no virtual interfaces");
    ASSERT_TRUE(ip({"address", "add", "10.9.8.6/29", "dev", "office"}));
    ASSERT_TRUE(ip({"link", "set", "elsewhere", "up"}));
    ASSERT_TRUE(ip({"link", "set", "office", "up"}));
    EXPECT_EQ(sweep({"10.9.8.1", "-t", "5", "-r", "0"}, network_.get()).status, 0); // the system looks for it for 3 s
    EXPECT_THAT(outcomes(), ElementsAre(Pair("1", "unreachable")));
}

} // namespace
