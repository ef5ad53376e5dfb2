#include "fakes/FakeTime.h"

#include "engine/Time.h"
#include "fakes/Journal.h"

#include <atomic>

namespace {

std::atomic<std::int64_t> clockTicks{0};

} // namespace

namespace Fakes {

FakeTime::FakeTime()
{
    set(1'000'000);
}

void FakeTime::set(std::int64_t ticks)
{
    clockTicks = ticks;
}

void FakeTime::advance(std::int64_t ticks)
{
    clockTicks += ticks;
}

std::int64_t FakeTime::now() const
{
    return clockTicks;
}

} // namespace Fakes

namespace PrinterDiscoveryPlugin::Time {

std::int64_t systemTicks() noexcept
{
    return clockTicks;
}

void sleepWhileDraining() noexcept
{
    Fakes::Journal::record("sleep 200 ms");
}

void sleepBeforeRetry() noexcept
{
    Fakes::Journal::record("sleep 1000 ms");
}

void sleepBetweenPolls() noexcept
{
    Fakes::Journal::record("sleep 2 s");
}

} // namespace PrinterDiscoveryPlugin::Time
