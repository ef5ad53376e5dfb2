/// Standard output, where a failure to write is not overlooked.
#pragma once

#include <string_view>

namespace Host {

/// Writes all of `text` to standard output and flushes it. Throws `Failure`.
void writeOutput(std::string_view text);

} // namespace Host
