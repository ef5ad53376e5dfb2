#include "Kep/Net.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Kep::Net::formatIpAddress;
using Kep::Net::parseIpAddress;

class BadAddressText : public testing::TestWithParam<const char*> {};

TEST_P(BadAddressText, IsRefusedAndLeavesTheAddressAlone)
{
    unsigned long address = 4711;
    EXPECT_FALSE(parseIpAddress(GetParam(), address));
    EXPECT_EQ(address, 4711U);
}

INSTANTIATE_TEST_SUITE_P(Strictness, BadAddressText,
                         testing::Values("", ".", "...", "1", "1.2", "1.2.3", "1.2.3.", ".1.2.3", "1.2.3.4.",
                                         "1.2.3.4.5", "1..2.3", "256.1.1.1", "1.1.1.256", "1.1.1.999", "1.1.1.1000",
                                         "1.1.1.0001", "01.2.3.4", "1.2.3.00", "1.2.3.04", "+1.2.3.4", "-1.2.3.4",
                                         " 1.2.3.4", "1.2.3.4 ", "1. 2.3.4", "1.2.3.4\n", "0x1.2.3.4", "1.2.3.a",
                                         "a.b.c.d", "1,2,3,4", "1.2.3:4", "::1", "localhost", "99999999999.1.1.1"));

TEST(AddressText, TheFirstOctetIsTheMostSignificant)
{
    unsigned long address = 0;
    ASSERT_TRUE(parseIpAddress("1.2.3.4", address));
    EXPECT_EQ(address, 0x01020304U);
    EXPECT_EQ(formatIpAddress(0x01020304U), "1.2.3.4");
}

TEST(AddressText, TheEndsOfTheSpaceAreRead)
{
    unsigned long address = 1;
    ASSERT_TRUE(parseIpAddress("0.0.0.0", address));
    EXPECT_EQ(address, 0U);
    ASSERT_TRUE(parseIpAddress("255.255.255.255", address));
    EXPECT_EQ(address, 0xFFFFFFFFU);
}

TEST(AddressText, AnEmbeddedNulIsNoPartOfAnAddress)
{
    unsigned long address = 0;
    EXPECT_FALSE(parseIpAddress(std::string("1.2.3.4\0", 8), address));
    EXPECT_FALSE(parseIpAddress(std::string("1.2\0.3.4", 8), address));
}

TEST(AddressText, EveryOctetIsFormattedAndReadBack)
{
    for (std::uint32_t octet = 0; octet < 256; ++octet) {
        const std::uint32_t address = octet << 24 | (255 - octet) << 16 | octet << 8 | (255 - octet);
        const std::string text = std::to_string(octet) + "." + std::to_string(255 - octet) + "." +
                                 std::to_string(octet) + "." + std::to_string(255 - octet);
        EXPECT_EQ(formatIpAddress(address), text);
        unsigned long back = 0;
        ASSERT_TRUE(parseIpAddress(text, back));
        EXPECT_EQ(back, address);
    }
}

TEST(AddressText, RandomAddressesSurviveTheWayThereAndBack)
{
    std::mt19937 random(1);
    for (int round = 0; round < 10'000; ++round) {
        const auto address = static_cast<std::uint32_t>(random());
        unsigned long back = 0;
        ASSERT_TRUE(parseIpAddress(formatIpAddress(address), back));
        ASSERT_EQ(back, address);
    }
}

} // namespace
