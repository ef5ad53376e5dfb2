/// UTF-8 and what the system says, for the files that speak to Windows. Windows only.
///
/// Any thread. No lock.
#pragma once

#include <string>
#include <string_view>

namespace Host {

/// `text` (UTF-16) in UTF-8.
std::string utf8Text(std::wstring_view text);

/// `text` (UTF-8) in UTF-16.
std::wstring wideText(std::string_view text);

/// The system's message for one of its error codes, without a full stop or line end.
std::string systemMessage(unsigned long code);

} // namespace Host
