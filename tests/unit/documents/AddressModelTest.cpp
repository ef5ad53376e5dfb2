// The address arithmetic against models of it, over many random lists with fixed seeds: sets of addresses for
// well-formed ranges, and the steps of the algorithms one by one for all others.
#include "documents/IpRange.h"

#include "Kep/Net.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <random>
#include <set>
#include <string>

namespace PrinterDiscoveryPlugin {
namespace {

using Ranges = std::vector<IpRange>;
using Addresses = std::set<std::uint64_t>;

constexpr int cases = 4000;
constexpr std::uint32_t lastAddress = 0xffffffff;

std::string show(const Ranges& ranges)
{
    std::string text;
    for (const IpRange& range : ranges)
        text += Kep::Net::formatIpAddress(range.from) + "-" + Kep::Net::formatIpAddress(range.to) + " ";
    return text;
}

class RandomRanges {
public:
    explicit RandomRanges(unsigned seed) : engine_(seed) {}

    std::uint32_t upTo(std::uint32_t limit) { return std::uniform_int_distribution<std::uint32_t>(0, limit)(engine_); }

    /// A window of 700 addresses over the borders of blocks, at the bottom, in the middle, or at the very top.
    void chooseWindow()
    {
        constexpr std::uint32_t starts[] = {0, 0x0a0000f0, 0x7fffff00, lastAddress - windowSize};
        start_ = starts[upTo(3)];
    }

    Ranges wellFormed()
    {
        Ranges ranges = any();
        for (IpRange& range : ranges) {
            if (range.from > range.to)
                std::swap(range.from, range.to);
        }
        return ranges;
    }

    /// Any bounds; no two ranges begin at the same address, for the order of such ranges is not determined.
    Ranges any()
    {
        Ranges ranges;
        std::set<std::uint32_t> begun;
        for (std::uint32_t left = upTo(6); left > 0; --left) {
            const IpRange range = {bound(), bound()};
            if (begun.insert(range.from).second)
                ranges.push_back(range);
        }
        return ranges;
    }

private:
    static constexpr std::uint32_t windowSize = 700;

    /// Often one of few addresses, so that ranges touch, share bounds and reach the window's end.
    std::uint32_t bound()
    {
        constexpr std::uint32_t favourites[] = {0, 15, 16, 17, 255, 256, 271, 272, windowSize - 1, windowSize};
        return start_ + (upTo(1) == 0 ? favourites[upTo(9)] : upTo(windowSize));
    }

    std::mt19937 engine_;
    std::uint32_t start_ = 0;
};

Addresses addressesOf(const IpRange& range)
{
    Addresses addresses;
    for (std::uint64_t address = range.from; address <= range.to; ++address)
        addresses.insert(addresses.end(), address);
    return addresses;
}

Addresses addressesOf(const Ranges& ranges)
{
    Addresses addresses;
    for (const IpRange& range : ranges)
        addresses.merge(addressesOf(range));
    return addresses;
}

/// Well-formed ranges joined wherever two share an address, by joining pairs until none is left.
Ranges joinedModel(Ranges ranges)
{
    const auto share = [](const IpRange& a, const IpRange& b) { return a.from <= b.to && b.from <= a.to; };
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        for (std::size_t j = i + 1; j < ranges.size(); ++j) {
            if (!share(ranges[i], ranges[j]))
                continue;
            ranges[i] = {std::min(ranges[i].from, ranges[j].from), std::max(ranges[i].to, ranges[j].to)};
            ranges.erase(ranges.begin() + static_cast<std::ptrdiff_t>(j));
            i = static_cast<std::size_t>(-1);
            break;
        }
    }
    std::sort(ranges.begin(), ranges.end(), [](const IpRange& a, const IpRange& b) { return a.from < b.from; });
    return ranges;
}

/// The longest runs of addresses of each joined range that are not excluded.
Ranges subtractedModel(const Ranges& include, const Ranges& exclude)
{
    const Addresses excluded = addressesOf(exclude);
    Ranges runs;
    for (const IpRange& joined : joinedModel(include)) {
        std::optional<IpRange> run;
        for (std::uint64_t wide = joined.from; wide <= joined.to; ++wide) {
            const auto address = static_cast<std::uint32_t>(wide);
            if (!excluded.contains(address)) {
                run = IpRange{run ? run->from : address, address};
            } else if (run) {
                runs.push_back(*run);
                run.reset();
            }
        }
        if (run)
            runs.push_back(*run);
    }
    return runs;
}

std::uint32_t countModel(const Ranges& ranges)
{
    std::uint32_t count = 0;
    for (const IpRange& range : ranges) {
        for (const std::uint64_t address :
             addressesOf({std::min(range.from, range.to), std::max(range.from, range.to)}))
            count += address % 256 != 0 && address % 256 != 255 ? 1 : 0;
    }
    return count;
}

/// Merging, step by step: a current range that is emitted when the next begins above its end.
Ranges normalizedBySteps(Ranges ranges)
{
    std::stable_sort(ranges.begin(), ranges.end(), [](const IpRange& a, const IpRange& b) { return a.from < b.from; });
    Ranges out;
    if (ranges.empty())
        return out;
    IpRange current = ranges[0];
    for (std::size_t i = 1; i < ranges.size(); ++i) {
        if (current.to < ranges[i].from) {
            out.push_back(current);
            current = ranges[i];
        } else {
            current.to = std::max(current.to, ranges[i].to);
        }
    }
    out.push_back(current);
    return out;
}

/// Subtraction, step by step: a cursor in each list and a working copy of the current include range.
Ranges subtractedBySteps(const Ranges& includes, const Ranges& excludes)
{
    const Ranges in = normalizedBySteps(includes);
    const Ranges ex = normalizedBySteps(excludes);
    if (in.empty() || ex.empty())
        return in;
    Ranges out;
    std::size_t i = 0;
    std::size_t x = 0;
    IpRange c = in[0];
    const auto moveOn = [&] {
        if (++i == in.size())
            return false;
        c = in[i];
        return true;
    };
    while (true) {
        const IpRange e = ex[x];
        if (c.to < e.from) {
            out.push_back(c);
            if (!moveOn())
                return out;
        } else if (e.to < c.from) {
            if (++x < ex.size())
                continue;
            out.push_back(c);
            while (moveOn())
                out.push_back(c);
            return out;
        } else if (c.from >= e.from && c.to <= e.to) {
            if (!moveOn())
                return out;
        } else if (c.from < e.from && c.to <= e.to) {
            c.to = e.from - 1;
        } else {
            if (c.from < e.from)
                out.push_back({c.from, e.from - 1});
            c.from = e.to + 1;
        }
    }
}

TEST(AddressModel, WellFormedRangesNormaliseAsSets)
{
    RandomRanges random(1);
    for (int i = 0; i < cases; ++i) {
        random.chooseWindow();
        const Ranges ranges = random.wellFormed();
        ASSERT_EQ(normalizeRanges(ranges), joinedModel(ranges)) << show(ranges);
    }
}

TEST(AddressModel, WellFormedRangesSubtractAsSets)
{
    RandomRanges random(2);
    for (int i = 0; i < cases; ++i) {
        random.chooseWindow();
        const Ranges include = random.wellFormed();
        const Ranges exclude = random.wellFormed();
        ASSERT_EQ(subtractRanges(include, exclude), subtractedModel(include, exclude))
            << show(include) << "less " << show(exclude);
    }
}

TEST(AddressModel, CountIsThatOfTheAddressesOneByOne)
{
    RandomRanges random(3);
    for (int i = 0; i < cases; ++i) {
        random.chooseWindow();
        const Ranges ranges = random.any();
        ASSERT_EQ(countProbeAddresses(ranges), countModel(ranges)) << show(ranges);
    }
}

TEST(AddressModel, AnyRangesNormaliseStepByStep)
{
    RandomRanges random(4);
    for (int i = 0; i < cases; ++i) {
        random.chooseWindow();
        const Ranges ranges = random.any();
        ASSERT_EQ(normalizeRanges(ranges), normalizedBySteps(ranges)) << show(ranges);
    }
}

TEST(AddressModel, AnyRangesSubtractStepByStep)
{
    RandomRanges random(5);
    for (int i = 0; i < 4 * cases; ++i) {
        random.chooseWindow();
        const Ranges include = random.any();
        const Ranges exclude = random.any();
        ASSERT_EQ(subtractRanges(include, exclude), subtractedBySteps(include, exclude))
            << show(include) << "less " << show(exclude);
    }
}

TEST(AddressModel, RandomListsReachEveryKindOfRange)
{
    RandomRanges random(5);
    int reversed = 0;
    int atTheEnd = 0;
    for (int i = 0; i < cases; ++i) {
        random.chooseWindow();
        for (const IpRange& range : random.any()) {
            reversed += range.from > range.to ? 1 : 0;
            atTheEnd += range.to == lastAddress ? 1 : 0;
        }
    }
    EXPECT_GT(reversed, 1000);
    EXPECT_GT(atTheEnd, 100);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
