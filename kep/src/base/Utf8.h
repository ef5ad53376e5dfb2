/// Telling UTF-8 (RFC 3629) from other bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace Kep {

/// The length of the valid UTF-8 sequence that `bytes` begins with, 1 to 4; 0 when it begins with none: overlong
/// forms, surrogates, values above U+10FFFF and sequences cut short are none. Requires at least one byte. Any thread.
std::size_t utf8SequenceLength(std::string_view bytes) noexcept;

} // namespace Kep
