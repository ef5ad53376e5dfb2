/// Texts for spreadsheets.
#pragma once

#include <string>
#include <string_view>

namespace Host {

/// A field of RFC 4180, in quotes where it needs them. A text that a spreadsheet would take for a formula (it begins
/// with = + - @, a tab or a carriage return) gets an apostrophe in front; control characters other than line ends
/// become \xNN.
std::string csvField(std::string_view text);

} // namespace Host
