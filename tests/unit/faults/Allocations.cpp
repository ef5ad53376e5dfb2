#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

using Faults::FailingAllocation;

enum Scope { nowhere, oneThread, everywhere };

std::atomic<int> scope{nowhere};
std::atomic<std::size_t> countdown{0};
std::atomic<std::size_t> failed{0};
std::atomic<bool> failsOn{false}; // after the one that the countdown leads to
std::atomic<std::size_t> live{0};
thread_local bool isTheThread = false;
thread_local int spared = 0;

bool counts()
{
    const int where = scope.load();
    return where != nowhere && spared == 0 && (where == everywhere || isTheThread);
}

bool failsNow()
{
    if (!counts())
        return false;
    std::size_t left = countdown.load();
    while (left != 0 && !countdown.compare_exchange_weak(left, left - 1))
        continue;
    const bool fails = left == 1 || (left == 0 && failsOn.load());
    if (fails)
        ++failed;
    return fails;
}

void* allocate(std::size_t size)
{
    void* const block = failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    ++live;
    return block;
}

void release(void* block)
{
    if (block != nullptr)
        --live;
    std::free(block);
}

} // namespace

namespace Faults {

FailingAllocation::FailingAllocation(Where where, std::size_t nth, Extent extent)
{
    failed = 0;
    countdown = nth;
    failsOn = extent == Extent::allAfter;
    isTheThread = true;
    scope = where == Where::thisThread ? oneThread : everywhere;
}

FailingAllocation::~FailingAllocation()
{
    scope = nowhere;
    isTheThread = false;
}

bool FailingAllocation::struck() const
{
    return failed.load() != 0;
}

std::size_t liveAllocations()
{
    return live.load();
}

Spared::Spared()
{
    ++spared;
}

Spared::~Spared()
{
    --spared;
}

} // namespace Faults

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    release(block);
}

void operator delete[](void* block) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    release(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    release(block);
}
