#include "lab/Error.h"
#include "lab/Farm.h"
#include "lab/Identity.h"
#include "lab/Snmprec.h"

#include <gmock/gmock.h>

#include <set>

namespace Lab {
namespace {

constexpr const char* printerTable = "1.3.6.1.2.1.25.3.2.1.2.1|6|1.3.6.1.2.1.25.3.1.5\n";

class Farms : public testing::Test {
protected:
    Farms()
    {
        add("p1", printerTable);
        add("p2", printerTable);
        add("q1", "1.3.6.1.2.1.1.1.0|4|no printer\n");
        add("q2", "1.3.6.1.2.1.1.1.0|4|no printer\n");
        add("q3", "1.3.6.1.2.1.1.1.0|4|no printer\n");
    }

    void add(const std::string& name, const std::string& text) { _library[name] = readSnmprec(name, name, text); }

    Farm spread(std::string_view network, std::uint32_t devices, std::optional<std::uint32_t> printers = {}) const
    {
        return spreadFarm(Network::parse(network), _library, {devices, printers, Individuality::ByAddress});
    }

    Farm plan(std::string_view text) const { return readPlan("plan", text, _library, Individuality::ByAddress); }

    template <class Build> std::string failure(Build build) const
    {
        try {
            build();
        } catch (const Error& error) {
            return error.what();
        }
        return "no failure";
    }

    static std::vector<std::string> lines(const Farm& farm)
    {
        std::vector<std::string> all;
        for (const Device& device : farm.devices())
            all.push_back(formatIpv4(device.address()) + " " + device.profile().name());
        return all;
    }

    ProfileLibrary _library;
};

TEST_F(Farms, ProfilesTakeTurnsEvenlySpread)
{
    EXPECT_THAT(lines(spread("127.77.0.0/24", 6)),
                testing::ElementsAre("127.77.0.1 p1", "127.77.0.43 p2", "127.77.0.85 q1", "127.77.0.128 q2",
                                     "127.77.0.170 q3", "127.77.0.212 p1"));
}

TEST_F(Farms, PrintersAreSpreadAmongTheOthers)
{
    EXPECT_THAT(lines(spread("127.77.0.0/24", 6, 2)),
                testing::ElementsAre("127.77.0.1 q1", "127.77.0.43 q2", "127.77.0.85 p1", "127.77.0.128 q3",
                                     "127.77.0.170 q1", "127.77.0.212 p2"));
}

TEST_F(Farms, TheSameArgumentsGiveTheSameFarm)
{
    EXPECT_EQ(lines(spread("127.80.0.0/16", 2000, 500)), lines(spread("127.80.0.0/16", 2000, 500)));
}

TEST_F(Farms, OfASlash16HaveEveryDeviceAtAnAddressOfItsOwn)
{
    const Farm farm = spread("127.80.0.0/16", 2000, 500);
    std::set<Address> addresses;
    for (const Device& device : farm.devices()) {
        addresses.insert(device.address());
        EXPECT_EQ(device.address() >> 16, 0x7F50U);
        EXPECT_NE(device.address() % 256, 0U);
        EXPECT_NE(device.address() % 256, 255U);
    }
    EXPECT_EQ(addresses.size(), 2000U);
    EXPECT_EQ(farm.printers(), 500U);
}

TEST_F(Farms, MayFillANetworkToItsLastPlace)
{
    const Farm farm = spread("127.77.0.0/24", 254, 254);
    EXPECT_EQ(farm.devices().size(), 254U);
    EXPECT_EQ(farm.printers(), 254U);
    EXPECT_EQ(formatIpv4(farm.devices().back().address()), "127.77.0.254");
}

TEST_F(Farms, FindWhoStandsAtAnAddress)
{
    const Farm farm = spread("127.77.0.0/24", 6);
    EXPECT_EQ(farm.at(parseIpv4("127.77.0.43").value())->profile().name(), "p2");
    EXPECT_EQ(farm.at(parseIpv4("127.77.0.44").value()), nullptr);
    EXPECT_EQ(farm.at(parseIpv4("127.77.0.254").value()), nullptr);
}

TEST_F(Farms, WhatDoesNotFitIsRefused)
{
    EXPECT_EQ(failure([&] { spread("127.77.0.0/24", 255); }),
              "expected at most 254 devices, the places of 127.77.0.0/24, found 255");
    EXPECT_EQ(failure([&] { spread("127.77.0.0/24", 5, 6); }),
              "expected at most as many printers as devices (5), found 6");
}

TEST_F(Farms, AKindThatTheProfilesLackIsRefused)
{
    const ProfileLibrary printers{{"p1", _library.at("p1")}};
    const ProfileLibrary others{{"q1", _library.at("q1")}};
    const Network network = Network::parse("127.77.0.0/24");
    EXPECT_EQ(failure([&] {
                  spreadFarm(network, others, {5, 1, Individuality::ByAddress});
              }),
              "expected a printer among the profiles, found none");
    EXPECT_EQ(failure([&] {
                  spreadFarm(network, printers, {5, 1, Individuality::ByAddress});
              }),
              "expected a device other than printers among the profiles, found none");
    EXPECT_EQ(failure([&] { spreadFarm(network, printers, {5, 5, Individuality::ByAddress}); }), "no failure");
}

TEST_F(Farms, APlanSaysWhatStandsWhere)
{
    EXPECT_THAT(lines(plan("# a plan\n\n127.9.0.255 q1\n127.1.0.0 p2\r\n")),
                testing::ElementsAre("127.1.0.0 p2", "127.9.0.255 q1"));
}

TEST_F(Farms, AWrongPlanIsNamedByItsLine)
{
    const std::string form = "expected ADDRESS PROFILE with an address within 127.0.0.0/8";
    EXPECT_EQ(failure([&] { plan("#\n127.0.0.1"); }), "plan:2: " + form + ", found \"127.0.0.1\"");
    EXPECT_EQ(failure([&] { plan("10.0.0.1 p1"); }), "plan:1: " + form + ", found \"10.0.0.1 p1\"");
    EXPECT_EQ(failure([&] { plan("127.0.0.x p1"); }), "plan:1: " + form + ", found \"127.0.0.x p1\"");
    EXPECT_EQ(failure([&] { plan("127.0.0.1 p3"); }),
              "plan:1: expected a profile out of p1, p2, q1, q2, q3, found \"127.0.0.1 p3\"");
    EXPECT_EQ(failure([&] { plan("127.0.0.1 p1\n127.0.0.1 p2"); }),
              "plan:2: expected an address that is not taken yet, found \"127.0.0.1 p2\"");
    EXPECT_EQ(failure([&] { plan("# nobody\n"); }), "plan: expected at least one line ADDRESS PROFILE, found none");
}

TEST(BuiltInFarms, GiveEveryPrinterAMacAndSerialNumberOfItsOwn)
{
    const Farm farm =
        spreadFarm(Network::parse("127.80.0.0/16"), builtInProfiles(), {2000, 2000 - 4, Individuality::ByAddress});
    std::set<std::string> macs;
    std::set<std::string> serials;
    std::size_t macCount = 0;
    std::size_t serialCount = 0;
    for (const Device& device : farm.devices()) {
        const Identity identity = identityOf(device);
        macs.insert(identity.mac.begin(), identity.mac.end());
        macCount += identity.mac.size();
        serialCount += identity.serialNumber.empty() ? 0 : 1;
        if (!identity.serialNumber.empty())
            serials.insert(identity.serialNumber);
    }
    EXPECT_GT(macCount, 1900U);
    EXPECT_EQ(macs.size(), macCount);
    EXPECT_GT(serialCount, 1000U);
    EXPECT_EQ(serials.size(), serialCount);
}

} // namespace
} // namespace Lab
