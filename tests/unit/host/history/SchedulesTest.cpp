#include "host/history/Schedules.h"

#include "host/Errors.h"
#include "tests/unit/host/TemporaryFolder.h"
#include "tests/unit/host/history/Noon.h"
#include "tests/unit/support/Privacy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RunSchedules : public testing::Test {
protected:
    /// The schedules as a program has them that starts now.
    Schedules& restart()
    {
        schedules.emplace(path);
        return *schedules;
    }

    void add(const std::string& id, std::chrono::minutes every, Schedule::Time now = noon)
    {
        schedules->add(id, {{"targets", "10.0.0.0/24"}, {"name", id}}, every, now);
    }

    static std::vector<std::string> idsOf(const std::vector<Schedule>& all)
    {
        std::vector<std::string> ids;
        for (const Schedule& schedule : all)
            ids.push_back(schedule.id);
        return ids;
    }

    std::vector<std::string> due(Schedule::Time now) { return idsOf(schedules->takeDue(now)); }

    TemporaryFolder folder;
    const std::string path = folder.file("settings.db");
    std::optional<Schedules> schedules;
};

TEST_F(RunSchedules, ComeBackAfterARestart)
{
    restart();
    add("a", 60min);
    add("b", 5min, noon + 1s);
    schedules->noteRun("a", "run-1");
    const auto all = restart().list();
    ASSERT_THAT(idsOf(all), ElementsAre("a", "b"));
    EXPECT_EQ(all[0].request, (JsonValue{{"targets", "10.0.0.0/24"}, {"name", "a"}}));
    EXPECT_EQ(all[0].every, 60min);
    EXPECT_EQ(all[0].next, noon + 60min);
    EXPECT_EQ(all[0].lastRun, "run-1");
    EXPECT_EQ(all[1].lastRun, "");
}

TEST_F(RunSchedules, AreDueForTheFirstTimeAfterTheirInterval)
{
    restart();
    add("a", 60min);
    EXPECT_THAT(due(noon + 60min - 1ms), IsEmpty());
    EXPECT_THAT(due(noon + 60min), ElementsAre("a"));
    EXPECT_THAT(due(noon + 60min), IsEmpty()) << "taken once";
    EXPECT_THAT(due(noon + 120min), ElementsAre("a"));
}

TEST_F(RunSchedules, KeepToTheirTimesHoweverLateTheyAreTaken)
{
    restart();
    add("a", 60min);
    due(noon + 61min);
    EXPECT_EQ(schedules->nextDue(), noon + 120min);
}

TEST_F(RunSchedules, RunOnceForWhatWasMissedWhileNoProgramRan)
{
    restart();
    add("a", 60min);
    restart();
    EXPECT_THAT(due(noon + 10h + 30min), ElementsAre("a"));
    EXPECT_EQ(schedules->nextDue(), noon + 11h);
}

TEST_F(RunSchedules, TakenOnesAreNotTakenAgainAfterARestart)
{
    restart();
    add("a", 60min);
    due(noon + 60min);
    restart();
    EXPECT_THAT(due(noon + 61min), IsEmpty());
}

TEST_F(RunSchedules, TellWhichIsNext)
{
    EXPECT_EQ(restart().nextDue(), std::nullopt);
    add("a", 60min);
    add("b", 5min);
    EXPECT_EQ(schedules->nextDue(), noon + 5min);
    due(noon + 5min);
    EXPECT_EQ(schedules->nextDue(), noon + 10min);
}

TEST_F(RunSchedules, AreRemoved)
{
    restart();
    add("a", 60min);
    EXPECT_TRUE(schedules->remove("a"));
    EXPECT_FALSE(schedules->remove("a"));
    schedules->noteRun("a", "run-1");
    EXPECT_THAT(restart().list(), IsEmpty());
    EXPECT_THAT(due(noon + 60min), IsEmpty());
}

TEST_F(RunSchedules, AcceptIntervalsFromFiveMinutesToAMonth)
{
    restart();
    for (const auto every : {5min, 44640min})
        EXPECT_NO_THROW(add("a" + std::to_string(every.count()), every));
    for (const auto every : {4min, 0min, -5min, 44641min})
        try {
            add("b", every);
            ADD_FAILURE() << every.count();
        } catch (const UsageError& error) {
            EXPECT_THAT(error.what(), HasSubstr("5 to 44640 minutes"));
        }
    EXPECT_THAT(schedules->list(), SizeIs(2));
}

TEST_F(RunSchedules, AreBounded)
{
    restart();
    for (std::size_t i = 0; i < Schedules::Most; ++i)
        add("s" + std::to_string(i), 60min);
    EXPECT_THROW(add("one more", 60min), UsageError);
    EXPECT_THAT(schedules->list(), SizeIs(Schedules::Most));
}

TEST_F(RunSchedules, AreForTheOwnerOfTheFileAlone)
{
    restart();
    add("a", 60min);
    EXPECT_TRUE(isPrivate(path));
}

TEST_F(RunSchedules, PassOverWhatIsNoSchedule)
{
    Kep::Host::DataStore store(path);
    const std::string place = "schedules.000000000000001-";
    store.set(place + "a", "no JSON");
    store.set(place + "b", R"({"request":[],"everyMinutes":60,"next":1,"lastRun":""})");
    store.set(place + "c", R"({"request":{},"everyMinutes":0,"next":1,"lastRun":""})");
    store.set(place + "d", R"({"request":{},"everyMinutes":60,"next":"soon","lastRun":""})");
    store.set(place + "e", R"({"everyMinutes":60,"next":1,"lastRun":""})");
    store.set("schedules.x", R"({"request":{},"everyMinutes":60,"next":1,"lastRun":""})");
    store.set(place + "good", R"({"request":{},"everyMinutes":60,"next":1,"lastRun":""})");
    EXPECT_THAT(idsOf(restart().list()), ElementsAre("good"));
}

TEST_F(RunSchedules, TellWhenTheFileCannotBeUsedAndAreAsBefore)
{
    restart();
    add("a", 60min);
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_ANY_THROW(add("b", 60min));
    EXPECT_ANY_THROW(schedules->remove("a"));
    EXPECT_ANY_THROW(schedules->takeDue(noon + 60min));
    EXPECT_EQ(schedules->nextDue(), noon + 60min) << "what was not noted is still due";
    EXPECT_THAT(idsOf(schedules->list()), ElementsAre("a"));
}

} // namespace
} // namespace Host
