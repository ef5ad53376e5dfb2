#include "base/FormatText.h"

#include <cstdarg>
#include <cstdio>

namespace Kep {

// NOLINTNEXTLINE(cert-dcl50-cpp): the compiler holds the arguments against the format
std::string formatText(const char* format, ...)
{
    va_list arguments;
    va_list measured;
    va_start(arguments, format);
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);

    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);
    return text;
}

} // namespace Kep
