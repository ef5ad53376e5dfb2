#include "tasks/Capacity.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Kep::HostSettings;
using Kep::narrowest;
using Kep::taskLimit;

namespace {

constexpr std::size_t ample = 60000;

HostSettings paced(int rate, std::chrono::milliseconds timeout = 1s)
{
    HostSettings settings;
    settings.snmpRate = rate;
    settings.snmpTimeout = timeout;
    return settings;
}

HostSettings limited(std::size_t limit)
{
    HostSettings settings;
    settings.taskLimit = limit;
    return settings;
}

} // namespace

TEST(Capacity, IsThatOfTheScarcestResource)
{
    const auto capacity = narrowest({{900, "memory"}, {200, "open files"}, {201, "UDP ports"}});
    EXPECT_EQ(capacity.tasks, 200u);
    EXPECT_EQ(capacity.limitedBy, "open files");
}

TEST(Capacity, IsNeverNothing)
{
    EXPECT_EQ(narrowest({{0, "memory"}}).tasks, 1u);
}

TEST(Capacity, IsWhatCanBeSetAtMost)
{
    EXPECT_EQ(narrowest({}).tasks, 65536u);
    EXPECT_EQ(narrowest({{1'000'000, "memory"}}).tasks, 65536u);
    EXPECT_EQ(narrowest({{1'000'000, "memory"}}).limitedBy, "");
}

TEST(Capacity, OfThisMachineIsKnown)
{
    EXPECT_GE(Kep::Host::taskCapacity().tasks, 1u);
    EXPECT_LE(Kep::Host::taskCapacity().tasks, 65536u);
    EXPECT_FALSE(Kep::machineBounds().empty());
}

TEST(TaskLimits, AreAsSet)
{
    EXPECT_EQ(taskLimit(limited(1), ample), 1u);
    EXPECT_EQ(taskLimit(limited(50000), ample), 50000u);
}

TEST(TaskLimits, AreLoweredToWhatTheMachineGives)
{
    EXPECT_EQ(taskLimit(limited(50000), 300), 300u);
    EXPECT_EQ(taskLimit(paced(0), 300), 300u);
}

TEST(TaskLimits, KeepThePacketRateUpWhenNobodyAnswers)
{
    for (const int rate : {1000, 5000, 8000}) {
        for (const auto timeout : {500ms, 1000ms}) {
            const auto inTimeout = static_cast<std::size_t>(rate) * static_cast<std::size_t>(timeout / 1ms) / 1000;
            EXPECT_GT(taskLimit(paced(rate, timeout), ample), inTimeout);
            EXPECT_LE(taskLimit(paced(rate, timeout), ample), 2 * inTimeout);
        }
    }
}

TEST(TaskLimits, AreModerateWhereTheyAreChosen)
{
    EXPECT_EQ(taskLimit(paced(0), ample), 16384u);
    EXPECT_EQ(taskLimit(paced(1'000'000, 60s), ample), 16384u);
    EXPECT_EQ(taskLimit(paced(1, 50ms), ample), 256u);
}
