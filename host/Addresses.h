/// IPv4 addresses as numbers, first octet most significant, and sets of them.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

constexpr std::uint32_t LastAddress = std::numeric_limits<std::uint32_t>::max();

/// Both bounds included, `from` never above `to`.
struct AddressRange {
    std::uint32_t from;
    std::uint32_t to;
    bool operator==(const AddressRange&) const = default;
};

using AddressRanges = std::vector<AddressRange>;

/// The dotted text of an address.
std::string addressText(std::uint32_t address);

/// `10.0.0.1-10.0.0.99`, or `10.0.0.7` for a range of one.
std::string rangeText(const AddressRange& range);

/// The address that a dotted text stands for; none when it is not an address.
std::optional<std::uint32_t> parseAddress(std::string_view text);

/// Whether the range holds an address that is probed: one whose last octet is neither 0 nor 255.
bool holdsProbedAddress(const AddressRange& range);

/// The same addresses as a sorted list of ranges between which there are gaps.
AddressRanges merged(AddressRanges ranges);

/// The addresses of `ranges` that are not in `excluded`. Both are merged, and so is the result.
AddressRanges withoutRanges(const AddressRanges& ranges, const AddressRanges& excluded);

/// The merged `ranges` that hold an address that is probed, made one where nothing between them is.
AddressRanges bridged(const AddressRanges& ranges);

/// How many addresses of merged `ranges` are probed.
std::uint64_t countProbed(const AddressRanges& ranges);

/// Whether merged `ranges` hold `address`.
bool holdAddress(const AddressRanges& ranges, std::uint32_t address);

} // namespace Host
