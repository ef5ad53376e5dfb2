/// Sweeps of net-snmp's agent, over every version and the protocols that it and the engine have in common.
#include "tests/network/Devices.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Snmpd.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace NetworkTests;

namespace {

/// A network of agents on the addresses from ownAddress(1) on, and sweeps over it.
class AgentNetwork : public testing::Test {
protected:
    /// Starts an agent at the next address.
    void start(const std::function<Device(const std::string&)>& make, const std::vector<SnmpProfile>& profiles)
    {
        const std::string address = ownAddress(static_cast<int>(agents_.size()) + 1);
        const Device device = make(address);
        agents_.push_back(std::make_unique<Snmpd>(Endpoint{address, port_}, device.data, profiles));
        if (!device.record.is_null()) {
            printers_.push_back(device.record);
        }
    }

    void startAllKinds(const std::vector<SnmpProfile>& profiles)
    {
        start(fullPrinter, profiles);
        start([](const std::string&) { return server(); }, profiles);
        start(secondRowPrinter, profiles);
        start(barePrinter, profiles);
        start([](const std::string&) { return tablelessDevice(); }, profiles);
        start(latin1Printer, profiles);
        start(printerInColumn20, profiles);
    }

    Sweep sweepOf(const std::string& target, const SnmpProfile& profile, bool withPasswords = true) const
    {
        Sweep sweep{.arguments = {target, "--port", std::to_string(port_), "-t", "2", "-r", "1"}};
        const std::vector<std::string> options = profile.options(withPasswords);
        sweep.arguments.insert(sweep.arguments.end(), options.begin(), options.end());
        return sweep;
    }

    Document foundWith(const SnmpProfile& profile) const
    {
        return discover(sweepOf(ownNetwork() + ".1-" + ownNetwork() + ".9", profile));
    }

    Document nothing() const { return finishedSweep(9, {}); }
    Document everyPrinter() const { return finishedSweep(9, printers_); }
    const std::vector<Document>& printers() const { return printers_; }

private:
    std::uint16_t port_ = freeUdpPort({ownAddress(1), ownAddress(2), ownAddress(3), ownAddress(4), ownAddress(5),
                                       ownAddress(6), ownAddress(7), ownAddress(8), ownAddress(9)});
    std::vector<std::unique_ptr<Snmpd>> agents_;
    std::vector<Document> printers_;
};

class SnmpdSweep : public AgentNetwork, public testing::WithParamInterface<SnmpProfile> {};

TEST_P(SnmpdSweep, FindsExactlyThePrintersWithAllTheirFields)
{
    startAllKinds({GetParam()});
    EXPECT_EQ(foundWith(GetParam()), everyPrinter());
}

std::vector<SnmpProfile> agentProfiles()
{
    std::vector<SnmpProfile> profiles = commonProfiles();
    profiles.push_back(v3("SHA", "DES"));
    profiles.push_back(v3("MD5", "AES"));
    profiles.push_back(v3("SHA", "AES-192"));
    profiles.push_back(v3("SHA", "AES-256"));
    return profiles;
}

INSTANTIATE_TEST_SUITE_P(Profiles, SnmpdSweep, testing::ValuesIn(agentProfiles()), testing::PrintToStringParamName());

using SnmpdSweeps = AgentNetwork;

TEST_F(SnmpdSweeps, WrongCommunityFindsNothingAndCountsEveryStep)
{
    start(fullPrinter, {v1(), v2c()});
    EXPECT_EQ(foundWith(v1("private")), nothing());
    EXPECT_EQ(foundWith(v2c("private")), nothing());
    EXPECT_EQ(foundWith(v2c()), everyPrinter());
}

TEST_F(SnmpdSweeps, WrongPasswordsAndUsersFindNothingAndCountEveryStep)
{
    SnmpProfile wrongAuth = v3("SHA", "AES");
    SnmpProfile wrongPrivacy = v3("MD5", "DES");
    SnmpProfile wrongUser = v3("SHA", "");
    start(fullPrinter, {wrongAuth, wrongPrivacy, wrongUser});
    wrongAuth.authPassword = "not-this-one";
    wrongPrivacy.privacyPassword = "not-this-one";
    wrongUser.user = "nobody-of-that-name";
    EXPECT_EQ(foundWith(wrongAuth), nothing());
    EXPECT_EQ(foundWith(wrongPrivacy), nothing());
    EXPECT_EQ(foundWith(wrongUser), nothing());
    EXPECT_EQ(foundWith(v3("SHA", "AES")), everyPrinter());
    EXPECT_EQ(foundWith(v3("MD5", "DES")), everyPrinter());
}

TEST_F(SnmpdSweeps, WrongProtocolsFindNothing)
{
    SnmpProfile otherHash = v3("SHA", "");
    SnmpProfile otherCipher = v3("SHA", "AES");
    start(fullPrinter, {otherHash, otherCipher});
    otherHash.authProtocol = "MD5";
    otherCipher.privacyProtocol = "DES";
    EXPECT_EQ(foundWith(otherHash), nothing());
    EXPECT_EQ(foundWith(otherCipher), nothing());
}

TEST_F(SnmpdSweeps, LevelBelowTheAgentsDemandFindsNothing)
{
    SnmpProfile profile = v3("SHA", "AES");
    start(fullPrinter, {profile});
    profile.privacyProtocol.clear();
    EXPECT_EQ(foundWith(profile), nothing());
}

TEST_F(SnmpdSweeps, PasswordsMayComeFromTheEnvironment)
{
    const SnmpProfile profile = v3("SHA", "AES");
    start(fullPrinter, {profile});
    Sweep sweep = sweepOf(ownAddress(1), profile, false);
    sweep.environment = {{"PRINTER_DISCOVERY_AUTH_PASSWORD", profile.authPassword},
                         {"PRINTER_DISCOVERY_PRIV_PASSWORD", profile.privacyPassword}};
    EXPECT_EQ(discover(sweep), finishedSweep(1, printers()));
}

TEST_F(SnmpdSweeps, CommunityMayComeFromTheEnvironment)
{
    start(fullPrinter, {v2c("between-us")});
    Sweep sweep = sweepOf(ownAddress(1), v2c(""));
    sweep.environment = {{"PRINTER_DISCOVERY_COMMUNITY", "between-us"}};
    EXPECT_EQ(discover(sweep), finishedSweep(1, printers()));
}

TEST_F(SnmpdSweeps, ContextReachesTheAgent)
{
    SnmpProfile profile = v3("SHA", "AES");
    profile.context = "elsewhere";
    start(fullPrinter, {v3("SHA", "AES")});
    EXPECT_EQ(foundWith(profile), nothing());
    EXPECT_EQ(foundWith(v3("SHA", "AES")), everyPrinter());
}

TEST_F(SnmpdSweeps, ExcludedPrintersAreLeftOut)
{
    start(fullPrinter, {v2c()});
    start(secondRowPrinter, {v2c()});
    start(latin1Printer, {v2c()});
    Sweep sweep = sweepOf(ownNetwork() + ".1-" + ownNetwork() + ".9", v2c());
    sweep.arguments.insert(sweep.arguments.end(), {"--exclude", ownAddress(2)});
    EXPECT_EQ(discover(sweep), finishedSweep(8, {printers()[0], printers()[2]}));
}

TEST_F(SnmpdSweeps, WholeNetworkIsSweptButForItsFirstAndLastAddress)
{
    start(fullPrinter, {v2c()});
    EXPECT_EQ(discover(sweepOf(ownNetwork() + ".0/24", v2c())), finishedSweep(254, printers()));
}

TEST_F(SnmpdSweeps, SeveralTargetsMakeOneSweep)
{
    start(fullPrinter, {v2c()});
    start(latin1Printer, {v2c()});
    start(barePrinter, {v2c()});
    Sweep sweep = sweepOf(ownAddress(3), v2c());
    sweep.arguments.push_back(ownAddress(1));
    EXPECT_EQ(discover(sweep), finishedSweep(2, {printers()[0], printers()[2]}));
}

} // namespace
