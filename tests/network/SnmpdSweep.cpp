/// Sweeps of net-snmp's agent, over every version and the protocols that it and the engine have in common.
#include "tests/network/AgentNetwork.h"

#include <functional>

using namespace NetworkTests;

namespace {

/// Agents on one address after the other, and sweeps with one profile.
class SnmpdSweeps : public AgentNetwork {
protected:
    /// Starts an agent at the next address.
    void start(const std::function<Device(const std::string&)>& make, const std::vector<SnmpProfile>& profiles)
    {
        const int next = agentCount() + 1;
        AgentNetwork::start(next, make(ownAddress(next)), profiles);
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

    static std::string everyAddress() { return ownNetwork() + ".1-" + ownNetwork() + ".9"; }

    Sweep sweepAs(const SnmpProfile& profile, const std::string& target = everyAddress()) const
    {
        return sweepOf(target, profile.options());
    }

    Document foundWith(const SnmpProfile& profile) const { return discover(sweepAs(profile)); }

    Document nothing() const { return finishedSweep(9, {}); }
    Document everyPrinter() const { return finishedSweep(9, printers()); }
};

class SnmpdSweep : public SnmpdSweeps, public testing::WithParamInterface<SnmpProfile> {};

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
    Sweep sweep = sweepOf(ownAddress(1), profile.options(false));
    sweep.environment = {{"PRINTER_DISCOVERY_AUTH_PASSWORD", profile.authPassword},
                         {"PRINTER_DISCOVERY_PRIV_PASSWORD", profile.privacyPassword}};
    EXPECT_EQ(discover(sweep), finishedSweep(1, printers()));
}

TEST_F(SnmpdSweeps, CommunityMayComeFromTheEnvironment)
{
    start(fullPrinter, {v2c("between-us")});
    Sweep sweep = sweepAs(v2c(""), ownAddress(1));
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
    Sweep sweep = sweepAs(v2c());
    sweep.arguments.insert(sweep.arguments.end(), {"--exclude", ownAddress(2)});
    EXPECT_EQ(discover(sweep), finishedSweep(8, {printers()[0], printers()[2]}));
}

TEST_F(SnmpdSweeps, WholeNetworkIsSweptButForItsFirstAndLastAddress)
{
    start(fullPrinter, {v2c()});
    EXPECT_EQ(discover(sweepAs(v2c(), ownNetwork() + ".0/24")), finishedSweep(254, printers()));
}

TEST_F(SnmpdSweeps, SeveralTargetsMakeOneSweep)
{
    start(fullPrinter, {v2c()});
    start(latin1Printer, {v2c()});
    start(barePrinter, {v2c()});
    Sweep sweep = sweepAs(v2c(), ownAddress(3));
    sweep.arguments.push_back(ownAddress(1));
    EXPECT_EQ(discover(sweep), finishedSweep(2, {printers()[0], printers()[2]}));
}

} // namespace
