#include "host/WindowsText.h"

#include <array>

#include <windows.h>

namespace Host {

std::string utf8Text(std::wstring_view text)
{
    const auto size = static_cast<int>(text.size());
    std::string narrow(text.size() * 3, '\0'); // a unit never takes more bytes
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(),
                                           static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(length));
    return narrow;
}

std::wstring wideText(std::string_view text)
{
    const auto size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), size)));
    return wide;
}

std::string systemMessage(unsigned long code)
{
    std::array<wchar_t, 512> text{};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                       nullptr, code, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string message = utf8Text({text.data(), length});
    message.erase(message.find_last_not_of(" .\r\n") + 1);
    return message.empty() ? "error " + std::to_string(code) : message;
}

} // namespace Host
