#include "tasks/Capacity.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Kep::HostSettings;
using Kep::limitUnder;
using Kep::narrowest;

namespace {

constexpr Kep::Capacity ample{60000, "patience"};

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
    EXPECT_EQ(capacity.resource, "open files");
}

TEST(Capacity, IsNeverNothing)
{
    EXPECT_EQ(narrowest({{0, "memory"}}).tasks, 1u);
}

TEST(Capacity, IsWhatCanBeSetAtMost)
{
    EXPECT_EQ(narrowest({}).tasks, 65536u);
    EXPECT_EQ(narrowest({{1'000'000, "memory"}}).tasks, 65536u);
    EXPECT_EQ(narrowest({{1'000'000, "memory"}}).resource, "");
}

TEST(Capacity, OfThisMachineIsKnown)
{
    EXPECT_GE(Kep::Host::taskLimit().tasks, 1u);
    EXPECT_FALSE(Kep::machineBounds().empty());
}

TEST(TaskLimits, AreAsSet)
{
    for (const std::size_t limit : {1u, 50000u, 60000u}) {
        EXPECT_EQ(limitUnder(limited(limit), ample).tasks, limit);
        EXPECT_EQ(limitUnder(limited(limit), ample).asked, limit);
        EXPECT_EQ(limitUnder(limited(limit), ample).loweredBy, "");
    }
}

TEST(TaskLimits, AreLoweredToWhatTheMachineGives)
{
    const auto limit = limitUnder(limited(301), {300, "open files"});
    EXPECT_EQ(limit.tasks, 300u);
    EXPECT_EQ(limit.asked, 301u);
    EXPECT_EQ(limit.loweredBy, "open files");
}

TEST(TaskLimits, AreChosenWithinWhatTheMachineGives)
{
    const auto limit = limitUnder(paced(0), {300, "open files"});
    EXPECT_EQ(limit.tasks, 300u);
    EXPECT_EQ(limit.asked, 0u);
    EXPECT_EQ(limit.loweredBy, "") << "nobody asked for more";
}

TEST(TaskLimits, KeepThePacketRateUpWhenNobodyAnswers)
{
    for (const int rate : {1000, 5000, 8000}) {
        for (const auto timeout : {500ms, 1000ms}) {
            const auto inTimeout = static_cast<std::size_t>(rate) * static_cast<std::size_t>(timeout / 1ms) / 1000;
            EXPECT_GT(limitUnder(paced(rate, timeout), ample).tasks, inTimeout);
            EXPECT_LE(limitUnder(paced(rate, timeout), ample).tasks, 2 * inTimeout);
        }
    }
}

TEST(TaskLimits, AreModerateWhereTheyAreChosen)
{
    EXPECT_EQ(limitUnder(paced(0), ample).tasks, 16384u);
    EXPECT_EQ(limitUnder(paced(1'000'000, 60s), ample).tasks, 16384u);
    EXPECT_EQ(limitUnder(paced(1, 50ms), ample).tasks, 256u);
}
