#include "engine/Time.h"

#include "engine/Deadline.h"

#include <chrono>
#include <thread>

namespace PrinterDiscoveryPlugin::Time {
namespace {

using std::chrono::nanoseconds;

constexpr std::int64_t pollInterval = 2'000'000'000;

// Not all systems sleep to the end.
template <typename TimePoint> void sleepUntil(TimePoint deadline) noexcept
{
    while (TimePoint::clock::now() < deadline)
        std::this_thread::sleep_until(deadline);
}

} // namespace

void sleepWhileDraining() noexcept
{
    sleepUntil(std::chrono::high_resolution_clock::now() + std::chrono::milliseconds(200));
}

void sleepBeforeRetry() noexcept
{
    sleepUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(1000));
}

void sleepBetweenPolls() noexcept
{
    const nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
    const nanoseconds deadline(saturatingDeadline(now.count(), pollInterval));
    sleepUntil(std::chrono::steady_clock::time_point(deadline));
}

} // namespace PrinterDiscoveryPlugin::Time
