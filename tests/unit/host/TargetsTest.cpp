#include "host/Targets.h"

#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
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

AddressRanges range(const char* from, const char* to)
{
    return {{at(from), at(to)}};
}

std::string targetRefusal(std::string_view text)
{
    try {
        parseTargets(text);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Targets, AnAddressIsARangeOfOne)
{
    EXPECT_EQ(parseTargets("10.0.0.7"), range("10.0.0.7", "10.0.0.7"));
    EXPECT_EQ(parseTargets("255.255.255.254"), range("255.255.255.254", "255.255.255.254"));
    EXPECT_EQ(parseTargets("0.0.0.1"), range("0.0.0.1", "0.0.0.1"));
}

TEST(Targets, ARangeHasBothItsEnds)
{
    EXPECT_EQ(parseTargets("10.0.0.1-10.0.0.99"), range("10.0.0.1", "10.0.0.99"));
    EXPECT_EQ(parseTargets("10.0.0.7-10.0.0.7"), range("10.0.0.7", "10.0.0.7"));
    EXPECT_EQ(parseTargets("0.0.0.0-255.255.255.254"), range("0.0.0.0", "255.255.255.254"));
}

TEST(Targets, ANetworkHasAllItsAddresses)
{
    EXPECT_EQ(parseTargets("10.0.0.0/24"), range("10.0.0.0", "10.0.0.255"));
    EXPECT_EQ(parseTargets("10.0.0.0/8"), range("10.0.0.0", "10.255.255.255"));
    EXPECT_EQ(parseTargets("192.168.4.0/22"), range("192.168.4.0", "192.168.7.255"));
    EXPECT_EQ(parseTargets("10.0.0.4/30"), range("10.0.0.4", "10.0.0.7"));
}

TEST(Targets, NetworksOfOneAndTwoAddressesWork)
{
    EXPECT_EQ(parseTargets("10.0.0.5/32"), range("10.0.0.5", "10.0.0.5"));
    EXPECT_EQ(parseTargets("10.0.0.4/31"), range("10.0.0.4", "10.0.0.5"));
    EXPECT_EQ(parseTargets("10.0.0.0/31"), range("10.0.0.0", "10.0.0.1"));
    EXPECT_EQ(parseTargets("10.0.0.254/31"), range("10.0.0.254", "10.0.0.255"));
}

TEST(Targets, BitsAfterThePrefixAreIgnored)
{
    EXPECT_EQ(parseTargets("10.0.0.7/24"), parseTargets("10.0.0.0/24"));
    EXPECT_EQ(parseTargets("10.1.2.3/8"), parseTargets("10.0.0.0/8"));
    EXPECT_EQ(parseTargets("10.0.0.5/31"), parseTargets("10.0.0.4/31"));
}

TEST(Targets, NothingReachesTheLastAddressOfAll)
{
    EXPECT_EQ(parseTargets("255.255.255.0/24"), range("255.255.255.0", "255.255.255.254"));
    EXPECT_EQ(parseTargets("255.255.255.1-255.255.255.255"), range("255.255.255.1", "255.255.255.254"));
    EXPECT_EQ(parseTargets("0.0.0.0/0"), range("0.0.0.0", "255.255.255.254"));
    EXPECT_EQ(parseTargets("255.255.255.254/31"), range("255.255.255.254", "255.255.255.254"));
}

TEST(Targets, WhatHoldsNoAddressToProbeIsRefused)
{
    for (const char* text :
         {"10.0.1.0", "10.0.1.255", "0.0.0.0", "255.255.255.255", "10.0.1.0/32", "10.0.1.255/32", "10.0.0.255-10.0.1.0",
          "10.0.1.0-10.0.1.0", "255.255.255.255/32", "255.255.255.255-255.255.255.255"})
        EXPECT_THAT(targetRefusal(text), AllOf(HasSubstr(text), HasSubstr("holds no address to probe"))) << text;
}

TEST(Targets, OneProbedAddressIsEnough)
{
    EXPECT_EQ(parseTargets("10.0.0.254-10.0.1.0"), range("10.0.0.254", "10.0.1.0"));
    EXPECT_EQ(parseTargets("10.0.0.255-10.0.1.1"), range("10.0.0.255", "10.0.1.1"));
    EXPECT_EQ(parseTargets("10.0.1.0-10.0.1.1"), range("10.0.1.0", "10.0.1.1"));
    EXPECT_EQ(parseTargets("10.0.0.254-10.0.0.255"), range("10.0.0.254", "10.0.0.255"));
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
            EXPECT_EQ(targetRefusal(text) == "accepted", probed) << text;
        }
}

TEST(Targets, ReversedRangesAreRefused)
{
    EXPECT_THAT(targetRefusal("10.0.0.9-10.0.0.1"), AllOf(HasSubstr("\"10.0.0.9-10.0.0.1\""), HasSubstr("reversed")));
    EXPECT_THAT(targetRefusal("10.0.1.1-10.0.0.1"), HasSubstr("reversed"));
    EXPECT_THAT(targetRefusal("255.255.255.255-0.0.0.0"), HasSubstr("reversed"));
}

TEST(Targets, PrefixesBeyond32AreRefused)
{
    EXPECT_THAT(targetRefusal("10.0.0.0/33"), HasSubstr("0 to 32"));
    EXPECT_THAT(targetRefusal("10.0.0.0/99"), HasSubstr("0 to 32"));
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
                             "10.0.0.1--10.0.0.2",
                             "10.0.0.1-",
                             "-10.0.0.1",
                             "-",
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
        EXPECT_THAT(targetRefusal(text), AllOf(HasSubstr("is no address"), HasSubstr("10.0.0.0/24")))
            << '"' << text << '"';
}

AddressRanges all(std::initializer_list<const char*> addresses)
{
    AddressRanges ranges;
    for (const char* address : addresses)
        ranges.push_back({at(address), at(address)});
    return ranges;
}

TEST(Targets, OctetsMayRunOverValues)
{
    EXPECT_EQ(parseTargets("10.0.0.1-9"), range("10.0.0.1", "10.0.0.9"));
    EXPECT_EQ(parseTargets("10.0.0-1.1-254"),
              (AddressRanges{{at("10.0.0.1"), at("10.0.0.254")}, {at("10.0.1.1"), at("10.0.1.254")}}));
    EXPECT_EQ(parseTargets("10-11.1-2.3.4"), all({"10.1.3.4", "10.2.3.4", "11.1.3.4", "11.2.3.4"}));
    EXPECT_EQ(parseTargets("10.0.0.5-5"), range("10.0.0.5", "10.0.0.5"));
}

TEST(Targets, OctetsThatRunOverEverythingMakeOneRange)
{
    EXPECT_EQ(parseTargets("10.0.0-3.0-255"), range("10.0.0.0", "10.0.3.255"));
    EXPECT_EQ(parseTargets("10.0-255.0-255.0-255"), range("10.0.0.0", "10.255.255.255"));
    EXPECT_EQ(parseTargets("0-255.0-255.0-255.0-255"), range("0.0.0.0", "255.255.255.254"));
    EXPECT_EQ(merged(parseTargets("10.0.4-7.0-255")), parseTargets("10.0.4.0/22"));
}

TEST(Targets, OctetsMayBeLists)
{
    EXPECT_EQ(parseTargets("10.0.0.1,5,9"), all({"10.0.0.1", "10.0.0.5", "10.0.0.9"}));
    EXPECT_EQ(parseTargets("10.0.0,2.7"), all({"10.0.0.7", "10.0.2.7"}));
    EXPECT_EQ(parseTargets("10.0,1.0,2.1,2").size(), 8U);
    EXPECT_EQ(parseTargets("10.0.0.1-3,9"),
              (AddressRanges{{at("10.0.0.1"), at("10.0.0.3")}, {at("10.0.0.9"), at("10.0.0.9")}}));
}

TEST(Targets, CommasJoinTargets)
{
    EXPECT_EQ(parseTargets("10.0.0.1,10.0.0.9"), all({"10.0.0.1", "10.0.0.9"}));
    EXPECT_EQ(parseTargets("10.0.0.1,5,10.0.0.9,7"), all({"10.0.0.1", "10.0.0.5", "10.0.0.9", "10.0.0.7"}));
    EXPECT_EQ(parseTargets("10.0.0.0/30,10.0.1.1-10.0.1.5,10.0.2.7"),
              (AddressRanges{{at("10.0.0.0"), at("10.0.0.3")},
                             {at("10.0.1.1"), at("10.0.1.5")},
                             {at("10.0.2.7"), at("10.0.2.7")}}));
    EXPECT_EQ(parseTargets("10.0.0.1,3.0.0.1"), all({"10.0.0.1", "3.0.0.1"}));
}

/// Octet texts of up to two values an octet, against a look at each combination.
TEST(Targets, OctetsAgreeWithEveryCombination)
{
    for (const char* third : {"0", "1-2", "0-255", "7,9-10"})
        for (const char* fourth : {"5", "0-255", "254-255", "3,0-1"}) {
            const AddressRanges given = merged(parseExcludes(std::string("10.4-5.") + third + '.' + fourth));
            const AddressRanges values3 = merged(parseExcludes(std::string("0.0.0.") + third));
            const AddressRanges values4 = merged(parseExcludes(std::string("0.0.0.") + fourth));
            for (std::uint32_t address = at("10.3.255.0"); address <= at("10.6.0.255"); ++address) {
                const std::uint32_t second = address >> 16 & 0xFF;
                const bool expected = second >= 4 && second <= 5 && holdAddress(values3, address >> 8 & 0xFF) &&
                                      holdAddress(values4, address & 0xFF);
                ASSERT_EQ(holdAddress(given, address), expected) << third << ' ' << fourth << ' ' << address;
            }
        }
}

TEST(Targets, OctetsAreRefusedAsAddressesAre)
{
    for (const char* text :
         {"10.0.0.1-256",  "10.0.0.256-300",      "10.0.0.1-",    "10.0.0.-9",          "10.0.0.1-2-3",
          "10.0.0.01-9",   "10.0.0.1-09",         "10.0.0.*",     "10.0.0.1,",          ",10.0.0.1",
          "10.0.0.1,,5",   "10.0.0,10.0.0.1",     "10.0.0.1,5.6", "10.0.0.0/24,5",      "10.0.0.1-10.0.0.9,5",
          "10.0.0-1.0/24", "10.0.0.1-5-10.0.0.9", "1-2",          "10.0.0.1, 10.0.0.2", "10.0.0.1;5"})
        EXPECT_THAT(targetRefusal(text), HasSubstr("is no address")) << text;
    EXPECT_THAT(targetRefusal("10.0.3-1.1-254"), AllOf(HasSubstr("reversed"), HasSubstr("3 is above 1")));
    EXPECT_THAT(targetRefusal("10.0.0.5-4"), AllOf(HasSubstr("reversed"), HasSubstr("5 is above 4")));
    EXPECT_THAT(targetRefusal("10.0.0-9.0,255"), HasSubstr("holds no address to probe"));
    EXPECT_EQ(targetRefusal("10.0.0-9.0-1"), "accepted");
}

TEST(Targets, TheOneAtFaultIsNamed)
{
    EXPECT_THAT(targetRefusal("10.0.0.1,10.0.0.300,10.0.0.2"), HasSubstr("\"10.0.0.300\" is no address"));
    EXPECT_THAT(targetRefusal("10.0.0.1,10.0.1.0"), HasSubstr("\"10.0.1.0\" holds no"));
}

TEST(Targets, TheNumberOfRangesIsBounded)
{
    EXPECT_EQ(parseTargets("10.0-255.0-255.1-254").size(), MostRanges);
    for (const char* text : {"10-11.0-255.0-255.1-254", "0-255.0-255.0-255.1", "10.0-255.0-255.1-99,101-254"})
        EXPECT_THAT(targetRefusal(text),
                    AllOf(HasSubstr(text), HasSubstr("more than 65536 ranges"), HasSubstr("10.0.0.0/8")));
    EXPECT_THAT(targetRefusal("10.0-255.0-255.1-254,11.0.0.1"), HasSubstr("more than 65536 ranges"));
    EXPECT_THROW(parseExcludes("0-255.0-255.0-255.1"), UsageError);
}

TEST(Targets, HugeListsOfValuesAreRefusedSoonAndNotOverflown)
{
    std::string values = "0-255";
    for (int i = 0; i < 20000; ++i)
        values += ",0-255";
    EXPECT_THAT(targetRefusal(values + '.' + values + '.' + values + '.' + values),
                HasSubstr("more than 65536 ranges"));

    // 2 to the power of 16 values in each octet: their product is that of 64 bits.
    std::string all = "0-255";
    for (int i = 1; i < 256; ++i)
        all += ",0-255";
    std::string ones = "1";
    for (int i = 1; i < 65536; ++i)
        ones += ",1";
    EXPECT_THAT(targetRefusal(all + '.' + all + '.' + all + '.' + ones), HasSubstr("more than 65536 ranges"));
}

TEST(Targets, BytesAfterANulAreNotOverlooked)
{
    EXPECT_THAT(targetRefusal(std::string_view("10.0.0.1\0x", 10)), HasSubstr("is no address"));
    EXPECT_THAT(targetRefusal(std::string_view("10.0.0.0/2\0"
                                               "4",
                                               12)),
                HasSubstr("is no address"));
}

TEST(Targets, RefusalsShowHostileTextsHarmlessly)
{
    EXPECT_THAT(targetRefusal("\x1b[2J"), AllOf(HasSubstr("\\x1B[2J"), Not(HasSubstr("\x1b"))));
    const std::string longText(100000, 'x');
    EXPECT_LT(targetRefusal(longText).size(), 300U);
}

TEST(Excludes, AreReadAsTargetsAre)
{
    EXPECT_EQ(parseExcludes("10.0.0.7"), range("10.0.0.7", "10.0.0.7"));
    EXPECT_EQ(parseExcludes("10.0.0.0/30"), range("10.0.0.0", "10.0.0.3"));
    EXPECT_EQ(parseExcludes("255.255.255.0/24"), range("255.255.255.0", "255.255.255.254"));
    EXPECT_THROW(parseExcludes("10.0.0.9-10.0.0.1"), UsageError);
    EXPECT_THROW(parseExcludes("10.0.0"), UsageError);
}

TEST(Excludes, NeedNotHoldAnAddressToProbe)
{
    EXPECT_EQ(parseExcludes("10.0.1.0"), range("10.0.1.0", "10.0.1.0"));
    EXPECT_EQ(parseExcludes("255.255.255.255"), AddressRanges());
    EXPECT_EQ(parseExcludes("255.255.255.255/32"), AddressRanges());
}

} // namespace
} // namespace Host
