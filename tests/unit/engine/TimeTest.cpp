// The real clock and the real sleeps, which never end early.
#include "engine/Time.h"

#include "engine/Deadline.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

namespace PrinterDiscoveryPlugin {
namespace {

template <class Clock, class Sleep> std::chrono::nanoseconds measured(Sleep sleep)
{
    const auto before = Clock::now();
    sleep();
    return Clock::now() - before;
}

std::int64_t ticksOfSystemClock()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count() / 100;
}

TEST(SystemTicks, AreHundredsOfNanosecondsOfTheSystemClock)
{
    const std::int64_t before = ticksOfSystemClock();
    const std::int64_t ticks = Time::systemTicks();
    const std::int64_t after = ticksOfSystemClock();
    EXPECT_LE(before, ticks);
    EXPECT_LE(ticks, after);
}

TEST(Sleeps, LastAsLongAsTheySay)
{
    EXPECT_GE(measured<std::chrono::high_resolution_clock>(Time::sleepWhileDraining), std::chrono::milliseconds(200));
    EXPECT_GE(measured<std::chrono::steady_clock>(Time::sleepBeforeRetry), std::chrono::milliseconds(1000));
    EXPECT_GE(measured<std::chrono::steady_clock>(Time::sleepBetweenPolls), std::chrono::nanoseconds(2'000'000'000));
}

TEST(Deadlines, SaturateAtTheLargestTime)
{
    constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(Time::saturatingDeadline(5, 2'000'000'000), 2'000'000'005);
    EXPECT_EQ(Time::saturatingDeadline(-5, 2'000'000'000), 1'999'999'995);
    EXPECT_EQ(Time::saturatingDeadline(latest - 2'000'000'001, 2'000'000'000), latest - 1);
    EXPECT_EQ(Time::saturatingDeadline(latest - 2'000'000'000, 2'000'000'000), latest);
    EXPECT_EQ(Time::saturatingDeadline(latest - 1'999'999'999, 2'000'000'000), latest);
    EXPECT_EQ(Time::saturatingDeadline(latest, 2'000'000'000), latest);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
