#include "ScarceMemory.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
thread_local std::size_t largestBlock = unlimited;

} // namespace

ScarceMemory::ScarceMemory(std::size_t largest)
{
    largestBlock = largest;
}

ScarceMemory::~ScarceMemory()
{
    largestBlock = unlimited;
}

void* operator new(std::size_t size)
{
    void* block = size > largestBlock ? nullptr : std::malloc(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
