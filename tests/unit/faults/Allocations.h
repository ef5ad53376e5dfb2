/// Allocations that fail on command, through the program's own `operator new`.
#pragma once

#include <cstddef>

namespace Faults {

enum class Where { thisThread, anyThread };

/// While one lives, the `nth` allocation (from 1) that is made there throws `std::bad_alloc`; or that one and all after
/// it. One at a time in the process. Made and destroyed by one thread.
class FailingAllocation {
public:
    enum class Extent { one, allAfter };

    FailingAllocation(Where where, std::size_t nth, Extent extent = Extent::one);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether an allocation has failed.
    bool struck() const;
};

/// Blocks that `operator new` has given and that are not back.
std::size_t liveAllocations();

/// While one lives, this thread's allocations neither count nor fail: for tests and fakes. May be nested.
class Spared {
public:
    Spared();
    ~Spared();
    Spared(const Spared&) = delete;
    Spared& operator=(const Spared&) = delete;
};

} // namespace Faults
