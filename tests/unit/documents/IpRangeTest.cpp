#include "documents/IpRange.h"

#include "Kep/Net.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace PrinterDiscoveryPlugin {

void PrintTo(const IpRange& range, std::ostream* out)
{
    *out << Kep::Net::formatIpAddress(range.from) << "-" << Kep::Net::formatIpAddress(range.to);
}

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

IpRange range(const std::string& from, const std::string& to)
{
    return parseRange({from, to});
}

/// Builds the ranges to probe of lists of texts.
class AddressRanges : public testing::Test {
protected:
    void include(const std::string& from, const std::string& to) { include_.push_back({from, to}); }
    void exclude(const std::string& from, const std::string& to) { exclude_.push_back({from, to}); }

    std::uint32_t build() { return buildProbeRanges(include_, exclude_, ranges); }

    std::vector<IpRange> ranges;

private:
    std::vector<IpRangeText> include_;
    std::vector<IpRangeText> exclude_;
};

TEST_F(AddressRanges, WholeBlockCounts254)
{
    include("192.168.1.0", "192.168.1.255");
    EXPECT_EQ(build(), 254u);
    EXPECT_THAT(ranges, ElementsAre(range("192.168.1.0", "192.168.1.255")));
}

TEST_F(AddressRanges, EdgesOfBlocksWithinARangeAreLeftOutOfTheCount)
{
    include("192.168.1.1", "192.168.2.254");
    EXPECT_EQ(build(), 508u);
}

TEST_F(AddressRanges, OverlappingRangesAreMerged)
{
    include("10.0.0.3", "10.0.0.9");
    include("10.0.0.1", "10.0.0.5");
    EXPECT_EQ(build(), 9u);
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.9")));
}

TEST_F(AddressRanges, RangesThatShareOneAddressAreMerged)
{
    include("10.0.0.1", "10.0.0.5");
    include("10.0.0.5", "10.0.0.9");
    build();
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.9")));
}

TEST_F(AddressRanges, RangeWithinAnotherIsMergedIntoIt)
{
    include("10.0.0.1", "10.0.0.9");
    include("10.0.0.3", "10.0.0.5");
    build();
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.9")));
}

TEST_F(AddressRanges, TouchingRangesStayTwo)
{
    include("10.0.0.1", "10.0.0.5");
    include("10.0.0.6", "10.0.0.9");
    EXPECT_EQ(build(), 9u);
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.5"), range("10.0.0.6", "10.0.0.9")));
}

TEST_F(AddressRanges, ExcludeCutsAHole)
{
    include("10.0.0.1", "10.0.0.20");
    exclude("10.0.0.5", "10.0.0.7");
    EXPECT_EQ(build(), 17u);
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.4"), range("10.0.0.8", "10.0.0.20")));
}

TEST_F(AddressRanges, ExcludeAtEitherEndShortens)
{
    include("10.0.0.1", "10.0.0.20");
    exclude("10.0.0.1", "10.0.0.3");
    exclude("10.0.0.19", "10.0.0.30");
    build();
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.4", "10.0.0.18")));
}

TEST_F(AddressRanges, RangesBeyondTheLastExcludeAreKeptUnchanged)
{
    include("10.0.0.1", "10.0.0.9");
    include("10.0.1.1", "10.0.1.9");
    include("10.0.2.1", "10.0.2.9");
    exclude("10.0.0.5", "10.0.0.9");
    build();
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.4"), range("10.0.1.1", "10.0.1.9"),
                                    range("10.0.2.1", "10.0.2.9")));
}

TEST_F(AddressRanges, ExcludeThatCoversAllLeavesNothing)
{
    include("10.0.0.5", "10.0.0.9");
    include("10.0.0.20", "10.0.0.30");
    exclude("10.0.0.1", "10.0.1.1");
    EXPECT_EQ(build(), 0u);
    EXPECT_THAT(ranges, IsEmpty());
}

TEST_F(AddressRanges, ExcludeOfEverythingLeavesNothing)
{
    include("0.0.0.0", "255.255.255.255");
    exclude("0.0.0.0", "255.255.255.255");
    EXPECT_EQ(build(), 0u);
    EXPECT_THAT(ranges, IsEmpty());
}

TEST_F(AddressRanges, WithoutExcludesTheIncludesAreNormalised)
{
    include("10.0.0.8", "10.0.0.9");
    include("10.0.0.1", "10.0.0.2");
    build();
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.2"), range("10.0.0.8", "10.0.0.9")));
}

TEST_F(AddressRanges, WithoutIncludesThereIsNothingWhateverIsExcluded)
{
    exclude("10.0.0.1", "10.0.0.9");
    EXPECT_EQ(build(), 0u);
    EXPECT_THAT(ranges, IsEmpty());
}

TEST_F(AddressRanges, BuildingReplacesTheOutput)
{
    ranges = {{1, 2}, {3, 4}};
    EXPECT_EQ(build(), 0u);
    EXPECT_THAT(ranges, IsEmpty());
}

TEST_F(AddressRanges, ReversedRangeKeepsItsBoundsAndCountsWhatLiesBetween)
{
    include("10.0.0.9", "10.0.0.1");
    EXPECT_EQ(build(), 9u);
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.9", "10.0.0.1")));
}

TEST_F(AddressRanges, ReversedIncludeIsDroppedByAnExcludeAroundItsBounds)
{
    include("10.0.0.9", "10.0.0.1");
    exclude("10.0.0.1", "10.0.0.20");
    EXPECT_EQ(build(), 0u);
    EXPECT_THAT(ranges, IsEmpty());
}

TEST_F(AddressRanges, ReversedExcludeDoublesAPieceAndLeavesTheRest)
{
    // From 10.0.0.1 to before 10.0.0.9, and then from after 10.0.0.5 on.
    include("10.0.0.1", "10.0.0.20");
    exclude("10.0.0.9", "10.0.0.5");
    build();
    EXPECT_THAT(ranges, ElementsAre(range("10.0.0.1", "10.0.0.8"), range("10.0.0.6", "10.0.0.20")));
}

TEST_F(AddressRanges, UnparsableBoundIsZero)
{
    include("nonsense", "10.0.0.1");
    include("10.0.0.7", "");
    build();
    EXPECT_THAT(ranges, ElementsAre(IpRange{0, 0x0a000001}, IpRange{0x0a000007, 0}));
}

TEST(AddressRange, BoundsAreParsedMostSignificantOctetFirst)
{
    EXPECT_EQ(range("1.2.3.4", "255.0.0.254"), (IpRange{0x01020304, 0xff0000fe}));
}

TEST(AddressRange, BoundEndsAtItsFirstNul)
{
    EXPECT_EQ(range(std::string("10.0.0.1\0 rest", 14), std::string("10.0.0.2\0\0", 10)),
              (IpRange{0x0a000001, 0x0a000002}));
    EXPECT_EQ(range(std::string("\0"
                                "10.0.0.1",
                                9),
                    "10.0.0.2"),
              (IpRange{0, 0x0a000002}));
}

TEST(AddressRange, OneUnparsableBoundDoesNotTouchTheOther)
{
    EXPECT_EQ(range("10.0.0.1", "10.0.0"), (IpRange{0x0a000001, 0}));
    EXPECT_EQ(range("10.0.0.256", "10.0.0.1"), (IpRange{0, 0x0a000001}));
    EXPECT_EQ(range(" 10.0.0.1", "10.0.0.1 "), (IpRange{0, 0}));
}

TEST(NormalizedRanges, AreSortedByFromAlone)
{
    EXPECT_THAT(normalizeRanges({{30, 5}, {10, 2}, {20, 19}}),
                ElementsAre(IpRange{10, 2}, IpRange{20, 19}, IpRange{30, 5}));
}

TEST(NormalizedRanges, EqualFromsMayComeInEitherOrder)
{
    EXPECT_THAT(normalizeRanges({{5, 1}, {5, 9}}),
                AnyOf(ElementsAre(IpRange{5, 1}, IpRange{5, 9}), ElementsAre(IpRange{5, 9})));
}

TEST(NormalizedRanges, EmptyListStaysEmpty)
{
    EXPECT_THAT(normalizeRanges({}), IsEmpty());
}

TEST(NormalizedRanges, TopOfTheAddressSpaceTouchesNothing)
{
    EXPECT_THAT(normalizeRanges({{0, 0}, {0xfffffff0, 0xffffffff}, {0xffffffff, 0xffffffff}}),
                ElementsAre(IpRange{0, 0}, IpRange{0xfffffff0, 0xffffffff}));
}

TEST(SubtractedRanges, BothListsAreNormalisedFirst)
{
    EXPECT_THAT(subtractRanges({{20, 30}, {1, 9}, {5, 12}}, {{25, 26}, {3, 4}, {24, 25}}),
                ElementsAre(IpRange{1, 2}, IpRange{5, 12}, IpRange{20, 23}, IpRange{27, 30}));
}

TEST(ProbeAddressCount, SingleAddressAtTheEdgeOfItsBlockCountsZero)
{
    EXPECT_EQ(countProbeAddresses({range("10.0.0.0", "10.0.0.0")}), 0u);
    EXPECT_EQ(countProbeAddresses({range("10.0.0.255", "10.0.0.255")}), 0u);
    EXPECT_EQ(countProbeAddresses({range("10.0.0.1", "10.0.0.1")}), 1u);
    EXPECT_EQ(countProbeAddresses({range("10.0.0.255", "10.0.1.0")}), 0u);
}

TEST(ProbeAddressCount, OfAllAddressesFits)
{
    EXPECT_EQ(countProbeAddresses({range("0.0.0.0", "255.255.255.255")}), 254u << 24);
}

TEST(ProbeAddressCount, SumWraps)
{
    const IpRange all = range("0.0.0.0", "255.255.255.255");
    EXPECT_EQ(countProbeAddresses({all, all}), static_cast<std::uint32_t>(2 * (std::uint64_t{254} << 24)));
}

TEST(ProbeAddressCount, OfNothingIsZero)
{
    EXPECT_EQ(countProbeAddresses({}), 0u);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
