/// Files of sections with keys and values, as people write them by hand.
///
///   # a comment, as is a line that begins with a semicolon
///   [name of a section]
///   key = value
///
/// A value runs to the end of its line, blanks at its ends left out; what stands in double quotes is taken as it is,
/// without the quotes. There are no comments behind values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

struct IniEntry {
    std::string key;
    std::string value;
    std::size_t line;
};

struct IniSection {
    std::string name;
    std::size_t line;
    std::vector<IniEntry> entries;
};

/// Text without blanks and tabs at its ends.
std::string_view trimmed(std::string_view text);

/// Reads a file's text. Throws `UsageError` that begins with `name` and the line, and never repeats what stands there,
/// when a line is none of the above, stands before the first section, or repeats a section's name or a key of its
/// section.
std::vector<IniSection> parseIni(std::string_view text, const std::string& name);

} // namespace Host
