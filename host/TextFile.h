/// Text files as people write them, read whole.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Host {

/// Lists and results that are read whole may be this long.
constexpr std::size_t LongestText = std::size_t{64} * 1024 * 1024;

/// The bytes of the file at `path` (UTF-8). Throws `UsageError` that begins with `option` when it cannot be read or is
/// longer than `LongestText`.
std::string readTextFile(const std::string& path, const std::string& option);

/// The rest of a stream that `name` calls in messages. Throws `UsageError` as `readTextFile` does.
std::string readText(std::istream& stream, const std::string& name);

/// Calls `take` for each line, without its end (a line feed, with or without a carriage return before it), and its
/// number from 1 on. A byte order mark in front is passed over.
void forEachLine(std::string_view text, const std::function<void(std::string_view line, std::size_t number)>& take);

} // namespace Host
