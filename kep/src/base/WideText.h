/// UTF-8 as the system's functions want it. Windows only.
///
/// Any thread. No lock.
#pragma once

#include <string>
#include <string_view>

namespace Kep {

/// `text` in UTF-16; bytes that are not UTF-8 become the replacement character. Throws `std::bad_alloc`.
std::wstring wideText(std::string_view text);

} // namespace Kep
