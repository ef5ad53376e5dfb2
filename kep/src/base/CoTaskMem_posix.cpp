#include "Kep/CoTaskMem.h"

#include <cstdlib>

// NOLINTBEGIN(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory): these are the allocator
void* CoTaskMemAlloc(std::size_t size)
{
    return std::malloc(size);
}

void CoTaskMemFree(void* block)
{
    std::free(block);
}
// NOLINTEND(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)
