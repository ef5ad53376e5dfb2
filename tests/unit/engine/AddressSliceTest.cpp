// Slices of any ranges, reversed ones and those that end at the very top included, against the rule taken step by
// step.
#include "engine/AddressSlice.h"

#include "Kep/Net.h"

#include <gmock/gmock.h>

#include <random>
#include <stdexcept>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Result {
    std::vector<std::string> queued;
    std::vector<std::string> leftover; // from-to

    friend bool operator==(const Result&, const Result&) = default;
};

Result slice(const std::vector<IpRange>& ranges, int limit)
{
    Result result;
    const auto left = queueSlice(ranges, limit, [&](const std::string& text) { result.queued.push_back(text); });
    for (const IpRangeText& range : left)
        result.leftover.push_back(range.from + "-" + range.to);
    return result;
}

std::string show(std::uint32_t from, std::uint32_t to)
{
    return Kep::Net::formatIpAddress(from) + "-" + Kep::Net::formatIpAddress(to);
}

void walkBySteps(const IpRange& range, int limit, Result& result)
{
    std::uint32_t addr = range.from;
    while (true) {
        const std::uint32_t low = addr % 256;
        if (low != 0 && low != 255) {
            if (static_cast<int>(result.queued.size()) >= limit && addr != range.to) {
                result.leftover.push_back(show(addr, range.to));
                return;
            }
            result.queued.push_back(Kep::Net::formatIpAddress(addr));
        }
        addr = addr == 0xffffffff ? 0 : addr + 1;
        if (addr > range.to)
            return;
    }
}

Result sliceBySteps(const std::vector<IpRange>& ranges, int limit)
{
    Result result;
    for (const IpRange& range : ranges) {
        if (static_cast<int>(result.queued.size()) >= limit)
            result.leftover.push_back(show(range.from, range.to));
        else if (range.from <= range.to)
            walkBySteps(range, limit, result);
    }
    return result;
}

TEST(AddressSlice, AnyRangesAreCutStepByStep)
{
    std::mt19937 engine(21);
    const auto upTo = [&](std::uint32_t limit) {
        return std::uniform_int_distribution<std::uint32_t>(0, limit)(engine);
    };
    constexpr std::uint32_t top = 0xffffffff;
    constexpr std::uint32_t starts[] = {0, 0x0a0000f0, top - 300};
    int wrapped = 0;
    for (int i = 0; i < 6000; ++i) {
        const std::uint32_t start = starts[upTo(2)];
        std::vector<IpRange> ranges;
        for (std::uint32_t count = upTo(4); count > 0; --count)
            ranges.push_back({start + upTo(300), upTo(3) == 0 ? start + 300 : start + upTo(300)});
        const int limit = 1 + static_cast<int>(upTo(upTo(1) == 0 ? 10 : 300));
        const Result expected = sliceBySteps(ranges, limit);
        ASSERT_EQ(slice(ranges, limit), expected) << "case " << i;
        for (const std::string& left : expected.leftover)
            wrapped += left.starts_with("0.") && left.ends_with("-255.255.255.255") ? 1 : 0;
    }
    EXPECT_GT(wrapped, 100);
}

TEST(AddressSlice, OfNoRangesIsEmpty)
{
    EXPECT_EQ(slice({}, 256), Result());
}

TEST(AddressSlice, TopAddressAloneGoesOnFromZero)
{
    const Result result = slice({{0xffffffff, 0xffffffff}}, 2);
    EXPECT_THAT(result.queued, ElementsAre("0.0.0.1", "0.0.0.2"));
    EXPECT_THAT(result.leftover, ElementsAre("0.0.0.3-255.255.255.255"));
}

TEST(AddressSlice, RangeThatEndsBeforeTheTopEnds)
{
    const Result result = slice({{0xfffffffd, 0xfffffffe}}, 256);
    EXPECT_THAT(result.queued, ElementsAre("255.255.255.253", "255.255.255.254"));
    EXPECT_THAT(result.leftover, IsEmpty());
}

TEST(AddressSlice, WhatTheQueueThrowsPasses)
{
    int calls = 0;
    const auto queue = [&](const std::string&) {
        if (++calls == 3)
            throw std::runtime_error("full");
    };
    EXPECT_THROW(queueSlice({{1, 9}}, 256, queue), std::runtime_error);
    EXPECT_EQ(calls, 3);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
