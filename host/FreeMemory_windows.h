#pragma once

#include <windows.h>

namespace Host {

/// Deleter of what functions of the system give to their caller, to be freed by `LocalFree`.
struct FreeMemory {
    void operator()(void* block) const { LocalFree(block); }
};

} // namespace Host
