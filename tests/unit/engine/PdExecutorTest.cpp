// The life of a run: its state, its activity time, its end.
#include "RunFixture.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Run : public RunTest {
protected:
    /// Ids of the tasks that are queued for `count` addresses.
    std::vector<std::uint32_t> queueTasks(int count)
    {
        sweep("10.0.0.1", "10.0.0." + std::to_string(count));
        return queue->waiting();
    }

    void addPrinter(const std::string& address)
    {
        snmp.agent(address).isPrinter();
        snmp.agent(address).onGet(identificationSettings().oidDeviceDescr, {Fakes::answer("Laser")});
        probe(address);
    }
};

TEST_F(Run, BeginsEmptyAndFinished)
{
    const DiscoveryStatus status = run().snapshot();
    EXPECT_EQ(status.step, 0u);
    EXPECT_EQ(status.total, 0u);
    EXPECT_EQ(status.state, 1u);
    EXPECT_THAT(status.printers, IsEmpty());
    EXPECT_EQ(status.cookie, "");
}

TEST_F(Run, KeepsItsId)
{
    EXPECT_EQ(run().id(), 7u);
}

TEST_F(Run, BeginsActiveNow)
{
    time.set(987'654'321);
    EXPECT_EQ(run().lastActivity(), 987'654'321);
}

TEST_F(Run, SharesProfileAndQueueWhileItLives)
{
    config.snmpProfile = std::make_shared<Kep::Snmp::ProfileV2>();
    run();
    EXPECT_EQ(config.snmpProfile.use_count(), 2);
    EXPECT_EQ(queue.use_count(), 2);
    destroy();
    EXPECT_EQ(config.snmpProfile.use_count(), 1);
    EXPECT_EQ(queue.use_count(), 1);
}

TEST_F(Run, CopiesItsConfiguration)
{
    const auto profile = std::make_shared<Kep::Snmp::ProfileV2>();
    config.snmpProfile = profile;
    run();
    config.snmpProfile = nullptr;
    probe("10.0.0.1");
    EXPECT_THAT(snmp.profiles(), ElementsAre(profile));
}

TEST_F(Run, WithoutAddressesIsFinishedOnceSwept)
{
    run().resetProgress(0);
    EXPECT_EQ(run().sweep({}, {}), 0u);
    const DiscoveryStatus status = run().snapshot();
    EXPECT_EQ(status.total, 0u);
    EXPECT_EQ(status.step, 0u);
    EXPECT_EQ(status.state, 1u);
}

TEST_F(Run, ResetBeginsToCountAnew)
{
    addPrinter("10.0.0.1");
    ASSERT_EQ(step(), 1u);
    run().resetProgress(99);
    const DiscoveryStatus status = run().snapshot();
    EXPECT_EQ(status.step, 0u);
    EXPECT_EQ(status.total, 99u);
    EXPECT_THAT(status.printers, IsEmpty());
}

TEST_F(Run, ResetLeavesPendingTasksAndTheStopAlone)
{
    queueTasks(1);
    run().stop();
    run().resetProgress(1);
    EXPECT_EQ(state(), 2u);
    queue->completeAll();
    EXPECT_EQ(step(), 0u);
}

TEST_F(Run, SnapshotIsACopy)
{
    addPrinter("10.0.0.1");
    DiscoveryStatus status = run().snapshot();
    status.printers.front().name = "changed";
    status.printers.clear();
    ASSERT_THAT(printers(), SizeIs(1));
    EXPECT_EQ(printers().front().name, "Laser");
}

TEST_F(Run, IsRunningUntilTheLastTaskFinishes)
{
    const auto tasks = queueTasks(2);
    EXPECT_EQ(state(), 2u);
    queue->complete(tasks[0]);
    EXPECT_EQ(state(), 2u);
    queue->complete(tasks[1]);
    EXPECT_EQ(state(), 1u);
}

TEST_F(Run, IsRunningWhileATaskHasRunButNotFinished)
{
    run().resetProgress(1);
    const auto tasks = queueTasks(1);
    queue->run(tasks[0]);
    const DiscoveryStatus status = run().snapshot();
    EXPECT_EQ(status.step, status.total);
    EXPECT_EQ(status.state, 2u);
    queue->finish(tasks[0]);
    EXPECT_EQ(state(), 1u);
}

TEST_F(Run, PendingTasksAreTheSameNewsAsTheState)
{
    EXPECT_FALSE(run().hasPendingTasks());
    const auto tasks = queueTasks(1);
    EXPECT_TRUE(run().hasPendingTasks());
    queue->complete(tasks[0]);
    EXPECT_FALSE(run().hasPendingTasks());
}

TEST_F(Run, TasksMayFinishInAnyOrder)
{
    const auto tasks = queueTasks(5);
    for (const int index : {3, 0, 4, 2}) {
        queue->finish(tasks.at(static_cast<std::size_t>(index)));
        EXPECT_EQ(state(), 2u);
    }
    queue->finish(tasks[1]);
    EXPECT_EQ(state(), 1u);
}

TEST_F(Run, ATaskThatIsNotPendingFinishesWithoutEffect)
{
    const auto tasks = queueTasks(1);
    run().taskFinished(tasks[0] + 1);
    EXPECT_EQ(state(), 2u);
}

TEST_F(Run, OneFinishTakesOneEntryOff)
{
    class OneId final : public Kep::Tasks::IManager {
        std::uint32_t submit(const std::shared_ptr<Kep::Tasks::Task>&, const std::string&, int) override { return 5; }
    };
    const TaskBinding binding;
    PdExecutor twice(1, config, std::make_shared<OneId>(), binding);
    twice.sweep({{"10.0.0.1", "10.0.0.2"}}, {});
    twice.taskFinished(5);
    EXPECT_TRUE(twice.hasPendingTasks());
    twice.taskFinished(5);
    EXPECT_FALSE(twice.hasPendingTasks());
}

TEST_F(Run, WithdrawnTaskFinishesUncounted)
{
    const auto tasks = queueTasks(1);
    queue->finish(tasks[0]);
    EXPECT_EQ(step(), 0u);
    EXPECT_EQ(state(), 1u);
}

TEST_F(Run, StoppedRunDrainsWithoutCounting)
{
    addPrinter("10.0.0.9");
    queueTasks(2);
    run().stop();
    EXPECT_EQ(state(), 2u);
    queue->completeAll();
    EXPECT_EQ(step(), 1u);
    EXPECT_THAT(printers(), SizeIs(1));
    EXPECT_EQ(state(), 1u);
}

TEST_F(Run, StopIsForGood)
{
    run().stop();
    run().stop();
    run().resetProgress(5);
    probe("10.0.0.1");
    EXPECT_EQ(step(), 0u);
}

TEST_F(Run, PrintersComeInTheOrderInWhichTheirProbesEnded)
{
    journal.during("open 10.0.0.1", [this] { addPrinter("10.0.0.2"); });
    addPrinter("10.0.0.1");
    ASSERT_THAT(printers(), SizeIs(2));
    EXPECT_EQ(printers()[0].ip, "10.0.0.2");
    EXPECT_EQ(printers()[1].ip, "10.0.0.1");
}

TEST_F(Run, SnapshotRefreshesActivity)
{
    EXPECT_TRUE(refreshesActivity([this] { run().snapshot(); }));
}

TEST_F(Run, ResetRefreshesActivity)
{
    EXPECT_TRUE(refreshesActivity([this] { run().resetProgress(1); }));
}

TEST_F(Run, SweepRefreshesActivity)
{
    EXPECT_TRUE(refreshesActivity([this] { run().sweep({}, {}); }));
}

TEST_F(Run, ProbeRefreshesActivity)
{
    EXPECT_TRUE(refreshesActivity([this] { probe("10.0.0.1"); }));
}

TEST_F(Run, ProbeRefreshesActivityWhenItBegins)
{
    journal.during("open 10.0.0.1", [this] { time.advance(1); });
    EXPECT_FALSE(refreshesActivity([this] { probe("10.0.0.1"); }));
    EXPECT_EQ(run().lastActivity(), time.now() - 1);
}

TEST_F(Run, StopDoesNotRefreshActivity)
{
    EXPECT_FALSE(refreshesActivity([this] { run().stop(); }));
}

TEST_F(Run, LookingForPendingTasksDoesNotRefreshActivity)
{
    EXPECT_FALSE(refreshesActivity([this] { run().hasPendingTasks(); }));
}

TEST_F(Run, FinishedTaskDoesNotRefreshActivity)
{
    const auto tasks = queueTasks(1);
    EXPECT_FALSE(refreshesActivity([&] { queue->finish(tasks[0]); }));
}

TEST_F(Run, StoppedSweepRefreshesNothing)
{
    run().stop();
    EXPECT_FALSE(refreshesActivity([this] { sweep("10.0.0.1", "10.0.0.1"); }));
}

TEST_F(Run, StoppedProbeRefreshesNothing)
{
    run().stop();
    EXPECT_FALSE(refreshesActivity([this] { probe("10.0.0.1"); }));
}

TEST_F(Run, SnapshotRefreshesActivityBeforeItWaitsForTheMutex)
{
    // While a task is being submitted the mutex is held, so the snapshot gets no further than its wait.
    run();
    std::thread reader;
    bool refreshed = false;
    journal.during("submit Test IP", [&] {
        time.advance(1);
        reader = std::thread([this] { run().snapshot(); });
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!refreshed && std::chrono::steady_clock::now() < giveUp)
            refreshed = run().lastActivity() == time.now();
    });
    sweep("10.0.0.1", "10.0.0.1");
    reader.join();
    EXPECT_TRUE(refreshed);
}

TEST_F(Run, DestructionWithoutTasksDoesNotSleep)
{
    queueTasks(3);
    queue->completeAll();
    journal.clear();
    destroy();
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Run, DestructionWaitsInStepsUntilAllTasksHaveFinished)
{
    queueTasks(3);
    journal.clear();
    journal.during("sleep 200 ms", [this] { queue->finish(queue->unfinished().front()); });
    destroy();
    EXPECT_THAT(queue->unfinished(), IsEmpty());
    EXPECT_THAT(journal.texts(), ElementsAre("sleep 200 ms", "sleep 200 ms", "sleep 200 ms"));
}

TEST_F(Run, DestructionHoldsNoLockWhileItSleeps)
{
    queueTasks(2);
    journal.watch(run());
    journal.clear();
    journal.during("sleep 200 ms", [this] { queue->finish(queue->unfinished().front()); });
    destroy();
    journal.watchNothing();
    EXPECT_THAT(journal.texts(), SizeIs(2));
    EXPECT_THAT(journal.textsUnderMutex(), IsEmpty());
}

TEST_F(Run, DestructionIsHeldUpByAProbeOnAnotherThread)
{
    const auto tasks = queueTasks(1);
    std::atomic<bool> probing = false;
    std::atomic<bool> waited = false;
    journal.during("open 10.0.0.1", [&] {
        probing = true;
        while (!waited)
            std::this_thread::yield();
    });
    journal.during("sleep 200 ms", [&] { waited = true; });
    std::thread worker([&] { queue->complete(tasks[0]); });
    while (!probing)
        std::this_thread::yield();
    destroy();
    EXPECT_TRUE(waited);
    worker.join();
    EXPECT_THAT(queue->unfinished(), IsEmpty());
}

TEST_F(Run, EverythingAtOnce)
{
    for (int octet = 1; octet < 100; octet += 3)
        snmp.agent("10.0.0." + std::to_string(octet)).isPrinter();
    run().resetProgress(3 * 254);
    sweep("10.0.0.1", "10.0.2.254");
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([this] { queue->completeAll(); });
    std::atomic<bool> done = false;
    std::thread reader([&] {
        while (!done) {
            const DiscoveryStatus status = run().snapshot();
            EXPECT_LE(status.printers.size(), status.step);
            EXPECT_LE(status.step, status.total);
        }
    });
    for (std::thread& thread : threads)
        thread.join();
    queue->completeAll();
    done = true;
    reader.join();
    const DiscoveryStatus status = run().snapshot();
    EXPECT_EQ(status.step, 3u * 254);
    EXPECT_THAT(status.printers, SizeIs(33));
    EXPECT_EQ(status.state, 1u);
}

TEST_F(Run, StopAmidEverything)
{
    run().resetProgress(4 * 254);
    sweep("10.0.0.1", "10.0.3.254");
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([this] { queue->completeAll(); });
    while (step() < 5)
        std::this_thread::yield();
    run().stop();
    for (std::thread& thread : threads)
        thread.join();
    queue->completeAll();
    EXPECT_EQ(state(), 1u);
    EXPECT_GE(step(), 5u);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
