#include "Kep/CoTaskMem.h"

#include <cstdlib>

void* CoTaskMemAlloc(std::size_t size)
{
    return std::malloc(size);
}

void CoTaskMemFree(void* block)
{
    std::free(block);
}
