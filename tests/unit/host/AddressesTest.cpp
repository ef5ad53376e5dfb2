#include "host/Addresses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace Host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AddressSets, AreSortedAndWithoutOverlaps)
{
    EXPECT_THAT(merged({}), IsEmpty());
    EXPECT_THAT(merged({{30, 40}, {1, 5}, {3, 9}}), ElementsAre(AddressRange{1, 9}, AddressRange{30, 40}));
    EXPECT_THAT(merged({{1, 9}, {3, 4}, {9, 9}}), ElementsAre(AddressRange{1, 9}));
}

TEST(AddressSets, RangesThatTouchBecomeOne)
{
    EXPECT_THAT(merged({{6, 9}, {1, 5}}), ElementsAre(AddressRange{1, 9}));
    EXPECT_THAT(merged({{1, 5}, {7, 9}}), ElementsAre(AddressRange{1, 5}, AddressRange{7, 9}));
    EXPECT_THAT(merged({{LastAddress, LastAddress}, {0, 0}, {5, LastAddress}}),
                ElementsAre(AddressRange{0, 0}, AddressRange{5, LastAddress}));
}

TEST(AddressSets, LoseWhatIsExcluded)
{
    EXPECT_THAT(withoutRanges({{1, 20}}, {{5, 7}}), ElementsAre(AddressRange{1, 4}, AddressRange{8, 20}));
    EXPECT_THAT(withoutRanges({{1, 20}}, {{0, 3}, {18, 25}}), ElementsAre(AddressRange{4, 17}));
    EXPECT_THAT(withoutRanges({{5, 9}}, {{1, 20}}), IsEmpty());
    EXPECT_THAT(withoutRanges({{5, 9}}, {}), ElementsAre(AddressRange{5, 9}));
    EXPECT_THAT(withoutRanges({}, {{1, 2}}), IsEmpty());
    EXPECT_THAT(withoutRanges({{0, LastAddress}}, {{0, 0}, {LastAddress, LastAddress}}),
                ElementsAre(AddressRange{1, LastAddress - 1}));
}

TEST(AddressSets, OneExcludeMayReachIntoSeveralRanges)
{
    EXPECT_THAT(withoutRanges({{1, 5}, {10, 15}, {20, 25}}, {{4, 21}}),
                ElementsAre(AddressRange{1, 3}, AddressRange{22, 25}));
}

TEST(AddressSets, CountNeitherFirstNorLastOfABlock)
{
    EXPECT_EQ(countProbed({}), 0U);
    EXPECT_EQ(countProbed({{0x0A000000, 0x0A0000FF}}), 254U);
    EXPECT_EQ(countProbed({{0x0A000001, 0x0A0001FE}}), 508U);
    EXPECT_EQ(countProbed({{0x0A000000, 0x0A000000}, {0x0A0000FF, 0x0A000100}}), 0U);
    EXPECT_EQ(countProbed({{0, LastAddress - 1}}), 254ULL << 24U);
}

TEST(AddressSets, AreBridgedWhereNothingIsProbed)
{
    EXPECT_THAT(bridged({{0x0A000001, 0x0A0000FE}, {0x0A000101, 0x0A0001FE}}),
                ElementsAre(AddressRange{0x0A000001, 0x0A0001FE}));
    EXPECT_THAT(bridged({{0x0A000001, 0x0A0000FD}, {0x0A000101, 0x0A0001FE}}),
                ElementsAre(AddressRange{0x0A000001, 0x0A0000FD}, AddressRange{0x0A000101, 0x0A0001FE}));
    EXPECT_THAT(bridged({{1, 9}, {0xFF, 0x100}, {0x105, 0x106}}),
                ElementsAre(AddressRange{1, 9}, AddressRange{0x105, 0x106}));
    EXPECT_THAT(bridged({{0, 0}, {0xFF, 0xFF}}), IsEmpty());
}

/// Sets of small random ranges around the borders of two blocks, against sets of single addresses.
class RandomSets : public testing::Test {
protected:
    std::mt19937 random{20261121};

    AddressRanges someRanges()
    {
        AddressRanges ranges;
        for (auto count = random() % 6; count > 0; --count) {
            const std::uint32_t from = 500 + static_cast<std::uint32_t>(random() % 60);
            ranges.push_back({from, from + static_cast<std::uint32_t>(random() % 12)});
        }
        return ranges;
    }

    static std::set<std::uint32_t> singly(const AddressRanges& ranges)
    {
        std::set<std::uint32_t> all;
        for (const AddressRange& range : ranges)
            for (std::uint32_t address = range.from; address <= range.to; ++address)
                all.insert(address);
        return all;
    }

    static void expectNormal(const AddressRanges& ranges)
    {
        for (std::size_t i = 1; i < ranges.size(); ++i)
            EXPECT_GT(ranges[i].from, ranges[i - 1].to + 1);
    }
};

TEST_F(RandomSets, AgreeWithSetsOfSingleAddresses)
{
    for (int round = 0; round < 5000; ++round) {
        const AddressRanges targets = someRanges();
        const AddressRanges excludes = someRanges();
        const AddressRanges all = merged(targets);
        const AddressRanges rest = withoutRanges(all, merged(excludes));
        expectNormal(all);
        expectNormal(rest);
        std::set<std::uint32_t> expected = singly(targets);
        EXPECT_EQ(singly(all), expected);
        for (const std::uint32_t address : singly(excludes))
            expected.erase(address);
        ASSERT_EQ(singly(rest), expected);
        std::uint64_t probed = 0;
        for (std::uint32_t address = 490; address < 600; ++address) {
            ASSERT_EQ(holdAddress(rest, address), expected.contains(address)) << address;
            probed += expected.contains(address) && address % 256 != 0 && address % 256 != 255 ? 1U : 0U;
        }
        ASSERT_EQ(countProbed(rest), probed);
        const AddressRanges bridges = bridged(rest);
        ASSERT_EQ(countProbed(bridges), probed);
        for (const std::uint32_t address : expected)
            ASSERT_TRUE(holdAddress(bridges, address) || address % 256 == 0 || address % 256 == 255) << address;
    }
}

TEST(AddressTexts, RangesOfOneAreAddresses)
{
    EXPECT_EQ(rangeText({0x0A000001, 0x0A000001}), "10.0.0.1");
    EXPECT_EQ(rangeText({0x0A000001, 0x0A0001FE}), "10.0.0.1-10.0.1.254");
}

} // namespace
} // namespace Host
