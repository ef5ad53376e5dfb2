/// What this process holds of the system at the moment.
#pragma once

#include <cstddef>

namespace TestSupport {

/// Bytes that were allocated and not freed, of all allocators, with what these keep for their threads.
std::size_t allocatedBytes();

/// Descriptors, or what the system has in their place.
std::size_t openDescriptors();

std::size_t threadCount();

/// Whether a sanitizer watches, which multiplies what everything takes.
bool isSanitized();

} // namespace TestSupport
