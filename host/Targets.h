/// Addresses to sweep or to leave out, as people write them.
///
/// A text is one of these, or several joined by commas:
///   10.0.0.7                 an address
///   10.0.0.1-10.0.0.99       a range, both ends included
///   10.0.0.0/24              a network; bits after the prefix are ignored, so 10.0.0.7/24 is the same network
///   10.0.0-3.1-254           octets that run over values; each may be a number, a range, or several joined by commas
/// No blanks, no signs, no superfluous zeros. After a comma, what has no dot continues the octet before it:
/// 10.0.0.1,5,9 are three addresses. Addresses whose last octet is 0 or 255 are never probed, and ranges are cut short
/// before 255.255.255.255, so that a sweep always has an address after its last one.
#pragma once

#include "host/Addresses.h"

#include <cstddef>
#include <string_view>

namespace Host {

/// Ranges that a text may come to.
constexpr std::size_t MostRanges = 65536;

/// Reads targets. The ranges are as written: neither sorted nor apart from each other. Throws `UsageError` that names
/// the part at fault and says what is accepted when one is malformed, reversed, holds no address to probe, or comes to
/// more than `MostRanges` ranges.
AddressRanges parseTargets(std::string_view text);

/// Reads excludes: as targets, but they need not hold an address to probe. 255.255.255.255 alone comes to nothing.
AddressRanges parseExcludes(std::string_view text);

} // namespace Host
