/// Standard output, where a failure to write is not overlooked, and messages on standard error.
#pragma once

#include <string_view>

namespace Host {

/// Writes all of `text` to standard output and flushes it. Throws `Failure`.
void writeOutput(std::string_view text);

/// Writes a line that begins with the program's name to standard error.
void reportError(const char* message);

} // namespace Host
