/// Files that only their owner may know.
#pragma once

#include <string>

namespace Host {

/// The first 4096 bytes of the file at `path` (UTF-8). Throws `UsageError` that begins with `option` when it cannot be
/// read, or when its permissions let anyone but the owner read or write it; the message says how to mend that.
std::string readPrivateFile(const std::string& path, const std::string& option);

} // namespace Host
