#include "host/Targets.h"

#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::uint32_t at(const char* text)
{
    return parseAddress(text).value();
}

AddressRange range(const char* from, const char* to)
{
    return {at(from), at(to)};
}

std::string refusal(std::string_view text)
{
    try {
        parseTarget(text);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Targets, AnAddressIsARangeOfOne)
{
    EXPECT_EQ(parseTarget("10.0.0.7"), range("10.0.0.7", "10.0.0.7"));
    EXPECT_EQ(parseTarget("255.255.255.254"), range("255.255.255.254", "255.255.255.254"));
    EXPECT_EQ(parseTarget("0.0.0.1"), range("0.0.0.1", "0.0.0.1"));
}

TEST(Targets, ARangeHasBothItsEnds)
{
    EXPECT_EQ(parseTarget("10.0.0.1-10.0.0.99"), range("10.0.0.1", "10.0.0.99"));
    EXPECT_EQ(parseTarget("10.0.0.7-10.0.0.7"), range("10.0.0.7", "10.0.0.7"));
    EXPECT_EQ(parseTarget("0.0.0.0-255.255.255.254"), range("0.0.0.0", "255.255.255.254"));
}

TEST(Targets, ANetworkHasAllItsAddresses)
{
    EXPECT_EQ(parseTarget("10.0.0.0/24"), range("10.0.0.0", "10.0.0.255"));
    EXPECT_EQ(parseTarget("10.0.0.0/8"), range("10.0.0.0", "10.255.255.255"));
    EXPECT_EQ(parseTarget("192.168.4.0/22"), range("192.168.4.0", "192.168.7.255"));
    EXPECT_EQ(parseTarget("10.0.0.4/30"), range("10.0.0.4", "10.0.0.7"));
}

TEST(Targets, NetworksOfOneAndTwoAddressesWork)
{
    EXPECT_EQ(parseTarget("10.0.0.5/32"), range("10.0.0.5", "10.0.0.5"));
    EXPECT_EQ(parseTarget("10.0.0.4/31"), range("10.0.0.4", "10.0.0.5"));
    EXPECT_EQ(parseTarget("10.0.0.0/31"), range("10.0.0.0", "10.0.0.1"));
    EXPECT_EQ(parseTarget("10.0.0.254/31"), range("10.0.0.254", "10.0.0.255"));
}

TEST(Targets, BitsAfterThePrefixAreIgnored)
{
    EXPECT_EQ(parseTarget("10.0.0.7/24"), parseTarget("10.0.0.0/24"));
    EXPECT_EQ(parseTarget("10.1.2.3/8"), parseTarget("10.0.0.0/8"));
    EXPECT_EQ(parseTarget("10.0.0.5/31"), parseTarget("10.0.0.4/31"));
}

TEST(Targets, NothingReachesTheLastAddressOfAll)
{
    EXPECT_EQ(parseTarget("255.255.255.0/24"), range("255.255.255.0", "255.255.255.254"));
    EXPECT_EQ(parseTarget("255.255.255.1-255.255.255.255"), range("255.255.255.1", "255.255.255.254"));
    EXPECT_EQ(parseTarget("0.0.0.0/0"), range("0.0.0.0", "255.255.255.254"));
    EXPECT_EQ(parseTarget("255.255.255.254/31"), range("255.255.255.254", "255.255.255.254"));
}

TEST(Targets, WhatHoldsNoAddressToProbeIsRefused)
{
    for (const char* text :
         {"10.0.1.0", "10.0.1.255", "0.0.0.0", "255.255.255.255", "10.0.1.0/32", "10.0.1.255/32", "10.0.0.255-10.0.1.0",
          "10.0.1.0-10.0.1.0", "255.255.255.255/32", "255.255.255.255-255.255.255.255"})
        EXPECT_THAT(refusal(text), AllOf(HasSubstr(text), HasSubstr("holds no address to probe"))) << text;
}

TEST(Targets, OneProbedAddressIsEnough)
{
    EXPECT_EQ(parseTarget("10.0.0.254-10.0.1.0"), range("10.0.0.254", "10.0.1.0"));
    EXPECT_EQ(parseTarget("10.0.0.255-10.0.1.1"), range("10.0.0.255", "10.0.1.1"));
    EXPECT_EQ(parseTarget("10.0.1.0-10.0.1.1"), range("10.0.1.0", "10.0.1.1"));
    EXPECT_EQ(parseTarget("10.0.0.254-10.0.0.255"), range("10.0.0.254", "10.0.0.255"));
}

/// Every range of up to six addresses around a border of two blocks, against a look at each address.
TEST(Targets, HoldingNoAddressAgreesWithLookingAtEach)
{
    for (std::uint32_t from = at("10.0.0.250"); from <= at("10.0.1.5"); ++from)
        for (std::uint32_t to = from; to < from + 6; ++to) {
            bool probed = false;
            for (std::uint32_t address = from; address <= to; ++address)
                probed = probed || (address % 256 != 0 && address % 256 != 255);
            const std::string text = addressText(from) + "-" + addressText(to);
            EXPECT_EQ(refusal(text) == "accepted", probed) << text;
        }
}

TEST(Targets, ReversedRangesAreRefused)
{
    EXPECT_THAT(refusal("10.0.0.9-10.0.0.1"), AllOf(HasSubstr("\"10.0.0.9-10.0.0.1\""), HasSubstr("reversed")));
    EXPECT_THAT(refusal("10.0.1.1-10.0.0.1"), HasSubstr("reversed"));
    EXPECT_THAT(refusal("255.255.255.255-0.0.0.0"), HasSubstr("reversed"));
}

TEST(Targets, PrefixesBeyond32AreRefused)
{
    EXPECT_THAT(refusal("10.0.0.0/33"), HasSubstr("0 to 32"));
    EXPECT_THAT(refusal("10.0.0.0/99"), HasSubstr("0 to 32"));
}

TEST(Targets, MalformedTextsAreRefusedWithWhatIsAccepted)
{
    for (const char* text : {"",
                             " ",
                             "x",
                             "10",
                             "10.0.0",
                             "10.0.0.",
                             ".10.0.0",
                             "10.0.0.0.1",
                             "10.0.0.256",
                             "10.0.0.-1",
                             "10.0.0.+1",
                             "010.0.0.1",
                             "10.0.0.01",
                             "0x0a.0.0.1",
                             "10.0.0.1 ",
                             " 10.0.0.1",
                             "10.0.0.1\n",
                             "10.0.0.1,10.0.0.2",
                             "10.0.0.1--10.0.0.2",
                             "10.0.0.1-",
                             "-10.0.0.1",
                             "-",
                             "10.0.0.1-2",
                             "10.0.0.1-10.0.0.2-10.0.0.3",
                             "10.0.0.1 - 10.0.0.2",
                             "10.0.0.0/",
                             "/24",
                             "/",
                             "10.0.0.0//24",
                             "10.0.0.0/24/24",
                             "10.0.0.0/ 24",
                             "10.0.0.0/24 ",
                             "10.0.0.0/-1",
                             "10.0.0.0/+8",
                             "10.0.0.0/08",
                             "10.0.0.0/00",
                             "10.0.0.0/024",
                             "10.0.0.0/2x",
                             "10.0.0.0/0x18",
                             "10.0.0.0/8.0",
                             "10.0.0.0/255.255.255.0",
                             "10.0.0.0/100",
                             "10.0.0.0/99999999999999999999",
                             "10.0.0.0/24-10.0.1.0/24",
                             "10.0.0.1-10.0.0.0/24",
                             "4294967295",
                             "10.0.0.4294967297",
                             "printer.example",
                             "::1",
                             "fe80::1/64",
                             "10.0.0.1-fe80::1",
                             "١٠.0.0.1"})
        EXPECT_THAT(refusal(text), AllOf(HasSubstr("is no address"), HasSubstr("10.0.0.0/24"))) << '"' << text << '"';
}

TEST(Targets, BytesAfterANulAreNotOverlooked)
{
    EXPECT_THAT(refusal(std::string_view("10.0.0.1\0x", 10)), HasSubstr("is no address"));
    EXPECT_THAT(refusal(std::string_view("10.0.0.0/2\0"
                                         "4",
                                         12)),
                HasSubstr("is no address"));
}

TEST(Targets, RefusalsShowHostileTextsHarmlessly)
{
    EXPECT_THAT(refusal("\x1b[2J"), AllOf(HasSubstr("\\x1B[2J"), Not(HasSubstr("\x1b"))));
    const std::string longText(100000, 'x');
    EXPECT_LT(refusal(longText).size(), 300U);
}

TEST(Excludes, AreReadAsTargetsAre)
{
    EXPECT_EQ(parseExclude("10.0.0.7"), range("10.0.0.7", "10.0.0.7"));
    EXPECT_EQ(parseExclude("10.0.0.0/30"), range("10.0.0.0", "10.0.0.3"));
    EXPECT_EQ(parseExclude("255.255.255.0/24"), range("255.255.255.0", "255.255.255.254"));
    EXPECT_THROW(parseExclude("10.0.0.9-10.0.0.1"), UsageError);
    EXPECT_THROW(parseExclude("10.0.0"), UsageError);
}

TEST(Excludes, NeedNotHoldAnAddressToProbe)
{
    EXPECT_EQ(parseExclude("10.0.1.0"), range("10.0.1.0", "10.0.1.0"));
    EXPECT_EQ(parseExclude("255.255.255.255"), std::nullopt);
    EXPECT_EQ(parseExclude("255.255.255.255/32"), std::nullopt);
}

} // namespace
} // namespace Host
