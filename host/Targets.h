/// Addresses to sweep or to leave out, as people write them.
///
/// A text is one address (`10.0.0.7`), a range with both ends included (`10.0.0.1-10.0.0.99`), or a network
/// (`10.0.0.0/24`; bits after the prefix are ignored, so `10.0.0.7/24` is the same network). No blanks, no signs, no
/// superfluous zeros. Addresses whose last octet is 0 or 255 are never probed, and ranges are cut short before
/// 255.255.255.255, so that a sweep always has an address after its last one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Host {

/// Both bounds included, `from` never above `to`, `to` at most 255.255.255.254. First octet most significant.
struct AddressRange {
    std::uint32_t from;
    std::uint32_t to;
    bool operator==(const AddressRange&) const = default;
};

/// Reads a target. Throws `UsageError` that names it and says what is accepted when it is malformed, reversed, or
/// holds no address to probe.
AddressRange parseTarget(std::string_view text);

/// Reads an exclude: as a target, but it need not hold an address to probe. None when it holds only 255.255.255.255.
std::optional<AddressRange> parseExclude(std::string_view text);

/// The dotted text of an address.
std::string addressText(std::uint32_t address);

/// The address that a dotted text stands for; none when it is not an address.
std::optional<std::uint32_t> parseAddress(std::string_view text);

} // namespace Host
