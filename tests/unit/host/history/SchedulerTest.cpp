#include "host/history/Scheduler.h"

#include "host/Errors.h"
#include "tests/unit/host/TemporaryFolder.h"
#include "tests/unit/host/history/Noon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// A scheduler whose clock the test sets.
class Schedulers : public testing::Test {
protected:
    void begin()
    {
        scheduler = std::make_unique<Scheduler>(
            schedules, [this](const Schedule& schedule) { return start(schedule); }, [this] { return now.load(); });
    }

    void add(const std::string& id, std::chrono::minutes every) { schedules.add(id, JsonValue::object(), every, now); }

    void pass(std::chrono::minutes time)
    {
        now = now.load() + time;
        scheduler->wake();
    }

    /// The schedules started so far, once they are as many.
    std::vector<std::string> started(std::size_t count)
    {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, 30s, [&] { return starts.size() >= count; });
        return starts;
    }

    std::string start(const Schedule& schedule)
    {
        const std::lock_guard lock(mutex);
        starts.push_back(schedule.id);
        changed.notify_all();
        if (schedule.id == "broken")
            throw Failure("it cannot");
        return schedule.id == "left-out" ? "" : "run-" + std::to_string(starts.size());
    }

    TemporaryFolder folder;
    Schedules schedules{folder.file("settings.db")};
    std::atomic<Schedule::Time> now{noon};
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> starts;
    std::unique_ptr<Scheduler> scheduler;
};

TEST_F(Schedulers, StartRunsWhenTheyAreDue)
{
    begin();
    add("a", 60min);
    pass(59min);
    pass(1min);
    EXPECT_THAT(started(1), ElementsAre("a"));
    pass(60min);
    EXPECT_THAT(started(2), ElementsAre("a", "a"));
}

TEST_F(Schedulers, StartAtTheirBeginningWhatIsOverdue)
{
    add("a", 60min);
    now = noon + 5h;
    begin();
    EXPECT_THAT(started(1), ElementsAre("a"));
}

TEST_F(Schedulers, NoteTheRunThatWasStarted)
{
    begin();
    add("a", 60min);
    add("left-out", 60min);
    pass(60min);
    started(2);
    scheduler.reset();
    for (const Schedule& schedule : schedules.list())
        EXPECT_EQ(schedule.lastRun, schedule.id == "a" ? "run-1" : "");
}

TEST_F(Schedulers, GoOnAfterAStartThatThrows)
{
    begin();
    add("broken", 60min);
    add("whole", 60min);
    pass(60min);
    EXPECT_THAT(started(2), ElementsAre("broken", "whole"));
    pass(60min);
    EXPECT_THAT(started(4), ElementsAre("broken", "whole", "broken", "whole"));
}

TEST_F(Schedulers, WaitForADiskThatFails)
{
    begin();
    add("a", 60min);
    const std::string path = folder.file("settings.db");
    const std::string kept = folder.file("kept.db");
    std::filesystem::rename(path, kept);
    std::filesystem::create_directory(path);
    pass(60min);
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(starts, IsEmpty());
    std::filesystem::remove(path);
    std::filesystem::rename(kept, path);
    scheduler->wake();
    EXPECT_THAT(started(1), ElementsAre("a"));
}

TEST_F(Schedulers, EndAtOnce)
{
    begin();
    add("a", 44640min);
    scheduler.reset();
    EXPECT_THAT(starts, IsEmpty());
}

TEST_F(Schedulers, KeepTheSystemsTime)
{
    schedules.add("a", JsonValue::object(), 60min, std::chrono::system_clock::now() - 60min);
    scheduler = std::make_unique<Scheduler>(schedules, [this](const Schedule& schedule) { return start(schedule); });
    EXPECT_THAT(started(1), ElementsAre("a"));
}

} // namespace
} // namespace Host
