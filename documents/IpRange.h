/// Ranges of IPv4 addresses as numbers, and what remains of them less others.
///
/// Plain values and pure functions: any thread, no locks. Only `std::bad_alloc` is thrown. A list is normalised when
/// it is sorted by `from` and no two of its ranges overlap; ranges that merely touch stay two. Ranges whose `from` is
/// above their `to` are not put in order: they pass through the same steps as all others.
#pragma once

#include "documents/DiscoveryConfig.h"

#include <cstdint>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// Both bounds inclusive; the most significant byte is the first dotted octet.
struct IpRange {
    std::uint32_t from = 0;
    std::uint32_t to = 0;

    friend bool operator==(const IpRange&, const IpRange&) = default;
};

/// Each bound's text counts up to its first NUL character; a text that is no dotted quad gives 0.
IpRange parseRange(const IpRangeText& text);

/// Sorts by `from` alone, and merges each range that begins at or before the end of the one before it into that one.
std::vector<IpRange> normalizeRanges(std::vector<IpRange> ranges);

/// The addresses of `include` that are not in `exclude`, normalised. Neither list need be normalised.
std::vector<IpRange> subtractRanges(std::vector<IpRange> include, std::vector<IpRange> exclude);

/// The number of addresses, modulo 2^32, whose last octet is neither 0 nor 255. A range whose bounds are reversed
/// counts as the one between them. Constant work a range.
std::uint32_t countProbeAddresses(const std::vector<IpRange>& ranges);

/// Replaces `ranges` by `include` less `exclude` and returns the count of its addresses to probe.
std::uint32_t buildProbeRanges(const std::vector<IpRangeText>& include, const std::vector<IpRangeText>& exclude,
                               std::vector<IpRange>& ranges);

} // namespace PrinterDiscoveryPlugin
