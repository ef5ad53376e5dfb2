#include "base/WideText.h"

#include <windows.h>

namespace Kep {

std::wstring wideText(std::string_view text)
{
    const auto size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), size)));
    return wide;
}

} // namespace Kep
