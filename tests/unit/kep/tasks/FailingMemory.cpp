#include "tests/unit/kep/tasks/FailingMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsLeft = -1;

} // namespace

void Kep::Testing::failAllocationsAfter(int count) noexcept
{
    allocationsLeft = count;
}

void* operator new(std::size_t size)
{
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    allocationsLeft -= allocationsLeft > 0 ? 1 : 0;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}
