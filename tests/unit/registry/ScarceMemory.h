/// Allocations that fail, through the program's own `operator new`.
#pragma once

#include <cstddef>

/// While one lives, this thread's allocations above `largest` bytes throw `std::bad_alloc`. One at a time a thread.
class ScarceMemory {
public:
    explicit ScarceMemory(std::size_t largest);
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;
};
