/// Formatting as `printf` does it, into a text of the right size.
#pragma once

#include <string>

namespace Kep {

/// The text of `format` with its arguments. Measures first, so there is no limit of length. Any thread. Throws only
/// `std::bad_alloc`.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
std::string
formatText(const char* format, ...);

} // namespace Kep
