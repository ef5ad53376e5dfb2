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
    for (std::uint64_t seen = freedCount(); !tryOpen(); seen = freedCount())
        waitForFreed(seen);
}

void DescriptorLine::freed()
{
    {
        const MutexLock lock(mutex_);
        ++freed_;
    }
    changed_.notify_one();
}

void DescriptorLine::waitForFreed(std::uint64_t seen)
{
    MutexLock lock(mutex_);
    const auto deadline = std::chrono::steady_clock::now() + retryInterval;
    while (freed_ == seen && lock.waitUntil(changed_, deadline)) {
    }
}

std::uint64_t DescriptorLine::freedCount()
{
    const MutexLock lock(mutex_);
    return freed_;
}

} // namespace Kep::Snmp
