#include "snmp/DescriptorLine.h"

namespace Kep::Snmp {

namespace {

constexpr std::chrono::milliseconds retryInterval{50};

} // namespace

void DescriptorLine::open(const std::function<bool()>& tryOpen)
{
    if (tryOpen())
        return;
    const MutexLock turn(turn_);
    waited_ = true;
    for (std::uint64_t seen = freed_; !tryOpen(); seen = freed_)
        waitForFreed(seen);
    waited_ = false;
}

// Nobody waits as a rule, and then the lock is left alone.
void DescriptorLine::freed()
{
    ++freed_;
    if (!waited_)
        return;
    const MutexLock lock(mutex_);
    changed_.notify_one();
}

void DescriptorLine::waitForFreed(std::uint64_t seen)
{
    MutexLock lock(mutex_);
    const auto deadline = std::chrono::steady_clock::now() + retryInterval;
    while (freed_ == seen && lock.waitUntil(changed_, deadline)) {
    }
}

} // namespace Kep::Snmp
