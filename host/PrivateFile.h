/// Files that only their owner may know.
#pragma once

#include <cstddef>
#include <string>

namespace Host {

/// The file at `path` (UTF-8), of a longer one the first `most` bytes. Throws `UsageError` that begins with `option`
/// when it cannot be read, or when its permissions let anyone but the owner read or write it; the message says how to
/// mend that.
std::string readPrivateFile(const std::string& path, const std::string& option, std::size_t most);

/// Whether the permissions of the file at `path` let anyone but the owner read or write it; false when there is none.
bool isSharedFile(const std::string& path);

/// What to tell of such a file, with the command that mends it.
std::string sharedFileText(const std::string& path);

} // namespace Host
