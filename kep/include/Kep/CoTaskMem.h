/// The task allocator: memory that one library hands to another, which frees it.
///
/// On Windows these are the functions of ole32; elsewhere `Kep` offers them under the same names. C linkage, so that
/// a host written in any language can find `CoTaskMemFree` by name. Any thread; no lock of ours; nothing is thrown.
#pragma once

#if defined(_WIN32)
#include <objbase.h>
#else

#include "Kep/Export.h"

#include <cstddef>

extern "C" {

/// A block of `size` bytes aligned for any object, owned by the caller; null when there is no memory.
KEP_API void* CoTaskMemAlloc(std::size_t size);

/// Gives a block of `CoTaskMemAlloc` back; null does nothing.
KEP_API void CoTaskMemFree(void* block);
}

#endif
