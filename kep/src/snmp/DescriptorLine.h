/// Where those wait who found no descriptor, or nothing else that a socket takes, free.
#pragma once

#include "Kep/Mutex.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace Kep::Snmp {

/// Any thread; it synchronises itself.
class DescriptorLine {
public:
    /// Calls `tryOpen` until it is true: at once, then whenever a descriptor was freed, and from time to time, since
    /// the process has other descriptors than ours. One waiter at a time tries, the others queue up behind it. Passes
    /// on what `tryOpen` throws.
    void open(const std::function<bool()>& tryOpen) KEP_EXCLUDES(turn_);

    /// A descriptor was freed.
    void freed() KEP_EXCLUDES(mutex_);

private:
    void waitForFreed(std::uint64_t seen) KEP_REQUIRES(turn_) KEP_EXCLUDES(mutex_);

    Mutex turn_; ///< held by the waiter whose turn it is
    std::atomic<bool> waited_{false};
    std::atomic<std::uint64_t> freed_{0};
    Mutex mutex_; ///< between the last look at `freed_` and the sleep
    std::condition_variable changed_;
};

} // namespace Kep::Snmp
