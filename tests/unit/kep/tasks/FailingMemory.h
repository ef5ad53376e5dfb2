/// Lets allocations fail on command.
#pragma once

namespace Kep::Testing {

/// On this thread, lets the allocation fail that follows `count` others, and those after it; none when negative.
void failAllocationsAfter(int count) noexcept;

} // namespace Kep::Testing
