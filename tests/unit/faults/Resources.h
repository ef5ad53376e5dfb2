/// What the process holds of the system, measured.
#pragma once

#include <cstddef>

namespace Faults {

struct Resources {
    std::size_t blocks = 0; ///< of `operator new`, exactly
    std::size_t bytes = 0;  ///< of all allocators, with what they keep for their threads
    std::size_t threads = 0;
    std::size_t descriptors = 0;

    /// At this moment.
    static Resources now();
};

} // namespace Faults
