/// What people write on the command line, against real agents: several credentials, defaults from the tools'
/// configuration, the networks of the machine, comparison with an earlier run.
#include "tests/network/AgentNetwork.h"
#include "tests/network/harness/Rights.h"
#include "tests/network/harness/TestNetwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

using namespace NetworkTests;
namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

/// Agents, sweeps of all their addresses, and files.
class CommandLine : public AgentNetwork {
protected:
    Sweep sweepWith(const std::vector<std::string>& options) const { return sweepOf(ownNetwork() + ".1-9", options); }

    /// A file that its owner alone may read.
    std::string secretFile(const std::string& name, const std::string& content)
    {
        const fs::path file = folder_.write(name, content);
        fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
        return file;
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
};

TEST_F(CommandLine, SeveralCredentialsFindWhatEachReaches)
{
    const Device first = fullPrinter(ownAddress(1));
    const Device second = secondRowPrinter(ownAddress(2));
    const SnmpProfile user = v3("SHA", "AES");
    start(1, first, {v2c("first-floor")});
    start(2, second, {user});
    const std::string credentials =
        secretFile("credentials", "[first floor]\ncommunity = first-floor\n\n"
                                  "[second floor]\nuser = " +
                                      user.user + "\nauth-protocol = SHA\nauth-password = " + user.authPassword +
                                      "\npriv-protocol = AES\n" + "priv-password = " + user.privacyPassword + "\n");
    EXPECT_EQ(discover(sweepWith({"--credentials", credentials})), finishedSweep(18, {first.record, second.record}));
    EXPECT_EQ(discover(sweepWith({"-c", "first-floor"})), finishedSweep(9, {first.record}));
}

TEST_F(CommandLine, DefaultsOfTheToolsReachAnAgentOfVersion3)
{
    const Device printer = fullPrinter(ownAddress(1));
    const SnmpProfile user = v3("MD5", "DES");
    start(1, printer, {user});
    const fs::path defaults = folder().write(
        ".snmp/snmp.conf", "defVersion 3\ndefSecurityName " + user.user +
                               "\ndefSecurityLevel authPriv\ndefAuthType MD5\ndefAuthPassphrase " + user.authPassword +
                               "\ndefPrivType DES\ndefPrivPassphrase " + user.privacyPassword + "\n");
    fs::permissions(defaults, fs::perms(0600));
    Sweep sweep = sweepWith({});
    sweep.environment["HOME"] = folder().path();
    EXPECT_EQ(discover(sweep), finishedSweep(9, {printer.record}));
}

TEST_F(CommandLine, APrinterAtAnotherAddressHasMoved)
{
    start(1, fullPrinter(ownAddress(1)), {v2c()});
    start(2, barePrinter(ownAddress(2)), {v2c()});
    const fs::path before = folder().write("before.json", discover(sweepWith({})).dump());
    stop(1);
    stop(2);
    start(3, fullPrinter(ownAddress(3)), {v2c()});
    const Document diff = discover(sweepWith({"--diff", before})).at("diff");
    EXPECT_EQ(diff.at("moved"), Document::array({{{"from", ownAddress(1)}, {"to", ownAddress(3)}}}));
    EXPECT_EQ(diff.at("gone"), Document::array({barePrinter(ownAddress(2)).record}));
    EXPECT_EQ(diff.at("new"), Document::array());
    EXPECT_EQ(diff.at("changed"), Document::array());
}

/// A network of the test's own that has an interface besides loopback.
class LocalNetworks : public testing::Test {
protected:
    void SetUp() override
    {
        SKIP_UNLESS(TestNetwork::permitted(), "local networks: no right to make a network");
        network_ = std::make_unique<TestNetwork>();
        SKIP_UNLESS(ip({"link", "add", "office", "type", "veth", "peer", "name", "elsewhere"}),
                    "local networks: the system has no virtual interfaces");
        ASSERT_TRUE(ip({"address", "add", "10.9.8.6/29", "dev", "office"}));
        ASSERT_TRUE(ip({"address", "add", "10.1.1.1/24", "dev", "elsewhere"}));
    }

    bool ip(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "ip");
        return run({.words = words, .network = network_.get()}, sweepBound).status == 0;
    }

    Finished dryRun(const std::vector<std::string>& targets) const
    {
        std::vector<std::string> words = {builtProgram("printer-discovery"), "discover", "--dry-run"};
        words.insert(words.end(), targets.begin(), targets.end());
        return run({.words = words, .network = network_.get()}, sweepBound);
    }

    const TestNetwork* network() const { return network_.get(); }

private:
    std::unique_ptr<TestNetwork> network_;
};

TEST_F(LocalNetworks, AreThoseOfInterfacesThatAreUp)
{
    EXPECT_EQ(dryRun({"@local"}).status, 2);
    EXPECT_THAT(dryRun({"@local"}).errors, HasSubstr("no IPv4 network"));
    ASSERT_TRUE(ip({"link", "set", "office", "up"}));
    EXPECT_EQ(dryRun({"@local"}).output, "10.9.8.0-10.9.8.7\n# 7 addresses to probe\n");
    ASSERT_TRUE(ip({"link", "set", "elsewhere", "up"}));
    EXPECT_EQ(dryRun({"@local", "--exclude", "10.1.1.128/25"}).output,
              "10.1.1.0-10.1.1.127\n10.9.8.0-10.9.8.7\n# 134 addresses to probe\n");
}

TEST_F(LocalNetworks, AreSwept)
{
    ASSERT_TRUE(ip({"link", "set", "office", "up"}));
    const Device printer = fullPrinter("10.9.8.6");
    const Snmpd agent({"10.9.8.6", 161}, printer.data, {v2c()}, network());
    EXPECT_EQ(discover({.arguments = {"@local", "-t", "1", "-r", "0"}, .network = network()}),
              finishedSweep(7, {printer.record}));
}

} // namespace
