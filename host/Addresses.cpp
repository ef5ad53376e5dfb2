#include "host/Addresses.h"

#include "Kep/Host/Net.h"

#include <algorithm>
#include <iterator>

namespace Host {

namespace {

bool isProbed(std::uint32_t address)
{
    const std::uint32_t last = address & 0xFF;
    return last != 0 && last != 0xFF;
}

/// Addresses up to and including `address` that are probed.
std::uint64_t countUpTo(std::uint32_t address)
{
    const std::uint64_t wholeBlocks = address >> 8;
    return wholeBlocks * 254 + std::min<std::uint32_t>(address & 0xFF, 254);
}

} // namespace

std::string addressText(std::uint32_t address)
{
    return Kep::Net::formatIpAddress(address);
}

std::string rangeText(const AddressRange& range)
{
    const std::string from = addressText(range.from);
    return range.from == range.to ? from : from + '-' + addressText(range.to);
}

std::optional<std::uint32_t> parseAddress(std::string_view text)
{
    unsigned long address = 0;
    if (!Kep::Net::parseIpAddress(text, address))
        return std::nullopt;
    return static_cast<std::uint32_t>(address);
}

/// At most two addresses running are passed over: a .255 and the .0 after it.
bool holdsProbedAddress(const AddressRange& range)
{
    return range.to - range.from >= 2 || isProbed(range.from) || isProbed(range.to);
}

AddressRanges merged(AddressRanges ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) { return a.from < b.from; });
    AddressRanges result;
    for (const AddressRange& range : ranges) {
        const bool apart = result.empty() || (range.from > result.back().to && range.from - result.back().to > 1);
        if (apart)
            result.push_back(range);
        else
            result.back().to = std::max(result.back().to, range.to);
    }
    return result;
}

AddressRanges withoutRanges(const AddressRanges& ranges, const AddressRanges& excluded)
{
    AddressRanges result;
    auto exclude = excluded.begin();
    for (AddressRange rest : ranges) {
        exclude = std::find_if(exclude, excluded.end(), [&](const auto& each) { return each.to >= rest.from; });
        bool left = true;
        for (auto each = exclude; left && each != excluded.end() && each->from <= rest.to; ++each) {
            if (each->from > rest.from)
                result.push_back({rest.from, each->from - 1});
            left = each->to < rest.to;
            if (left)
                rest.from = each->to + 1;
        }
        if (left)
            result.push_back(rest);
    }
    return result;
}

AddressRanges bridged(const AddressRanges& ranges)
{
    AddressRanges result;
    for (const AddressRange& range : ranges) {
        if (!holdsProbedAddress(range))
            continue;
        if (!result.empty() && !holdsProbedAddress({result.back().to + 1, range.from - 1}))
            result.back().to = range.to;
        else
            result.push_back(range);
    }
    return result;
}

std::uint64_t countProbed(const AddressRanges& ranges)
{
    std::uint64_t count = 0;
    for (const AddressRange& range : ranges)
        count += countUpTo(range.to) - (range.from == 0 ? 0 : countUpTo(range.from - 1));
    return count;
}

bool holdAddress(const AddressRanges& ranges, std::uint32_t address)
{
    const auto after = std::upper_bound(ranges.begin(), ranges.end(), address,
                                        [](std::uint32_t a, const AddressRange& range) { return a < range.from; });
    return after != ranges.begin() && address <= std::prev(after)->to;
}

} // namespace Host
