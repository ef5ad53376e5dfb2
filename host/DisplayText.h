/// Texts of devices made fit for a terminal. Texts are UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

/// `text` with everything replaced that could steer a terminal or reorder a line: control characters and bytes that are
/// not UTF-8 by \xNN, invisible formatting characters by \uNNNN.
std::string printable(std::string_view text);

/// `text` in double quotes, printable, and cut to a length that fits a message.
std::string inQuotes(std::string_view text);

/// The texts with a blank between each and the next.
std::string joined(const std::vector<std::string>& texts);

/// Columns that a printable text takes on a terminal: none for combining marks, two for wide characters.
std::size_t displayWidth(std::string_view text);

/// `text` followed by blanks up to `width` columns.
std::string padded(std::string text, std::size_t width);

/// `text`, or if that is wider than `width` columns, at least one, its beginning and an ellipsis.
std::string shortened(const std::string& text, std::size_t width);

} // namespace Host
