/// A file that is written for its owner alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Host {

/// Used by one thread.
class PrivateOutput {
public:
    /// Makes the file at `path` (UTF-8) or empties the one there, and takes the rights of others off it. Throws
    /// `UsageError` that begins with `option` when that cannot be done.
    PrivateOutput(std::string path, const std::string& option);
    ~PrivateOutput();
    PrivateOutput(const PrivateOutput&) = delete;
    PrivateOutput& operator=(const PrivateOutput&) = delete;

    /// Appends. Throws `Failure`.
    void write(std::string_view text);

private:
    std::string path_;
    std::intptr_t handle_;
};

} // namespace Host
