#include "registry/PdExecutorRegistry.h"

#include "Kep/Exception.h"
#include "RegistryFixture.h"
#include "ScarceMemory.h"

#include <limits>
#include <new>
#include <thread>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;

class ExecutorRegistry : public WithFakes {
protected:
    ~ExecutorRegistry() override { queue->withdrawAll(); }

    std::int32_t create() { return static_cast<std::int32_t>(registry.createPdExecutor(emptyConfig())->id()); }

    // A run that has one probe waiting in the queue.
    std::int32_t createBusy(const std::string& address = "10.0.0.1")
    {
        const auto run = registry.createPdExecutor(configOf(address, address));
        run->sweep({{address, address}}, {});
        return static_cast<std::int32_t>(run->id());
    }

    bool holds(std::int32_t id) { return registry.getPdExecutor(id) != nullptr; }

    void passSeconds(std::int64_t seconds) { time.advance(seconds * second); }

    template <class Operation> static std::string refusal(Operation operation)
    {
        try {
            operation();
        } catch (const Kep::InvalidOperationException& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    PdExecutorRegistry registry{queue};
};

bool isStopped(PdExecutor& run)
{
    return run.sweep({{"10.9.9.9", "10.9.9.9"}}, {}) == 0;
}

TEST_F(ExecutorRegistry, TheFirstRunsGetTheIdsOneTwoThree)
{
    EXPECT_EQ(create(), 1);
    EXPECT_EQ(create(), 2);
    EXPECT_EQ(create(), 3);
}

TEST_F(ExecutorRegistry, IdsOfRemovedRunsAreNotHandedOutAgain)
{
    create();
    registry.removePdExecutor(create());
    EXPECT_EQ(create(), 3);
}

TEST_F(ExecutorRegistry, EachRegistryCountsFromOne)
{
    create();
    PdExecutorRegistry another(queue);
    EXPECT_EQ(another.createPdExecutor(emptyConfig())->id(), 1U);
}

TEST(RunIds, AfterTheLargestNumberFollowsTheSmallest)
{
    EXPECT_EQ(nextRunId(std::numeric_limits<std::int32_t>::max(), {}), std::numeric_limits<std::int32_t>::min());
}

TEST(RunIds, IdsInUseAreSkippedAlsoPastTheWrap)
{
    constexpr auto smallest = std::numeric_limits<std::int32_t>::min();
    const RunMap runs = {{smallest, nullptr}, {smallest + 1, nullptr}, {1, nullptr}, {3, nullptr}};
    EXPECT_EQ(nextRunId(std::numeric_limits<std::int32_t>::max(), runs), smallest + 2);
    EXPECT_EQ(nextRunId(0, runs), 2);
    EXPECT_EQ(nextRunId(2, runs), 4);
    EXPECT_EQ(nextRunId(-1, runs), 0);
}

TEST_F(ExecutorRegistry, AnIdCountsAsHandedOutWhenItsRunCannotBeMade)
{
    DiscoveryConfig large = emptyConfig();
    large.includeRanges.resize(10'000);
    create();
    {
        const ScarceMemory scarce(100'000);
        EXPECT_THROW(registry.createPdExecutor(large), std::bad_alloc);
    }
    EXPECT_FALSE(holds(2));
    EXPECT_EQ(create(), 3);
}

TEST_F(ExecutorRegistry, ARunIsFoundUnderItsId)
{
    const auto run = registry.createPdExecutor(emptyConfig());
    EXPECT_EQ(registry.getPdExecutor(1), run);
    EXPECT_EQ(run->lastActivity(), time.now());
}

TEST_F(ExecutorRegistry, RunsSubmitToTheQueueOfTheRegistry)
{
    createBusy("10.0.0.7");
    EXPECT_THAT(queue->descriptions("Test IP"), ElementsAre("PrinterDiscovery: 10.0.0.7"));
}

TEST_F(ExecutorRegistry, UnknownIdsAreNoError)
{
    create();
    EXPECT_EQ(registry.getPdExecutor(2), nullptr);
    EXPECT_EQ(registry.getPdExecutor(-1), nullptr);
    registry.removePdExecutor(2);
    EXPECT_TRUE(holds(1));
}

TEST_F(ExecutorRegistry, RemovalDoesNotTellTheRunToStop)
{
    const auto run = registry.createPdExecutor(emptyConfig());
    registry.removePdExecutor(1);
    EXPECT_FALSE(holds(1));
    EXPECT_FALSE(isStopped(*run));
    queue->completeAll();
}

TEST_F(ExecutorRegistry, RemovingABusyRunReturnsWhenItsWorkHasBeenDone)
{
    const std::int32_t id = createBusy("10.0.0.1");
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    registry.removePdExecutor(id);
    EXPECT_EQ(entered("sleep 200 ms"), 1U);
    EXPECT_EQ(entered("open 10.0.0.1"), 1U) << "the probe was told to stop";
    EXPECT_TRUE(queue->unfinished().empty());
}

TEST_F(ExecutorRegistry, OtherOperationsWaitWhileARemovedRunDrains)
{
    const std::int32_t idle = create();
    const std::int32_t busy = createBusy();
    std::future<bool> lookup;
    journal.during("sleep 200 ms", [&] {
        lookup = std::async(std::launch::async, [&] { return holds(idle); });
        EXPECT_TRUE(isHeldUp(lookup));
        queue->completeAll();
    });
    registry.removePdExecutor(busy);
    EXPECT_TRUE(lookup.get());
}

TEST_F(ExecutorRegistry, FinishCallbacksGoOnWhileARemovedRunDrains)
{
    const std::int32_t id = createBusy();
    journal.during("sleep 200 ms", [this] { elsewhere([this] { queue->completeAll(); }); });
    registry.removePdExecutor(id);
    EXPECT_TRUE(queue->unfinished().empty());
}

TEST_F(ExecutorRegistry, ARunThatOthersHoldIsDestroyedByTheLastOfThem)
{
    const std::int32_t id = createBusy();
    auto held = registry.getPdExecutor(id);
    registry.removePdExecutor(id);
    EXPECT_EQ(entered("sleep 200 ms"), 0U);

    std::thread::id drainedOn;
    bool registryFree = false;
    journal.during("sleep 200 ms", [&] {
        drainedOn = std::this_thread::get_id();
        registryFree = elsewhere([&] { return !holds(id); });
        queue->completeAll();
    });
    std::thread holder([&held] { held.reset(); });
    const std::thread::id holderId = holder.get_id();
    holder.join();
    EXPECT_EQ(drainedOn, holderId);
    EXPECT_TRUE(registryFree);
}

TEST_F(ExecutorRegistry, ARunIsKeptForOneDayOfIdleness)
{
    const std::int32_t id = create();
    passSeconds(86400);
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id));
    time.advance(second - 1);
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id)) << "part of a second does not count";
    time.advance(1);
    registry.checkTimeouts();
    EXPECT_FALSE(holds(id));
}

TEST_F(ExecutorRegistry, EveryTimedOutRunIsRemovedAndNoOther)
{
    create();
    create();
    passSeconds(1);
    const std::int32_t younger = create();
    passSeconds(86400);
    const std::int32_t fresh = create();
    registry.checkTimeouts();
    EXPECT_FALSE(holds(1));
    EXPECT_FALSE(holds(2));
    EXPECT_TRUE(holds(younger));
    EXPECT_TRUE(holds(fresh));
}

TEST_F(ExecutorRegistry, AnIdleRunWithAPendingTaskIsKept)
{
    const std::int32_t id = createBusy();
    passSeconds(90000);
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id));
    queue->withdrawAll();
    registry.checkTimeouts();
    EXPECT_FALSE(holds(id));
}

TEST_F(ExecutorRegistry, ASnapshotStartsTheDayAnew)
{
    const std::int32_t id = create();
    passSeconds(86401);
    registry.getPdExecutor(id)->snapshot();
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id));
}

TEST_F(ExecutorRegistry, AClockThatWasSetBackRemovesNothing)
{
    const std::int32_t id = create();
    passSeconds(-90000);
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id));
}

TEST_F(ExecutorRegistry, IdleSecondsCountAsSigned32BitNumber)
{
    const std::int32_t id = create();
    passSeconds(std::int64_t{1} << 31);
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id));
    passSeconds((std::int64_t{1} << 31) + 86400);
    registry.checkTimeouts();
    EXPECT_TRUE(holds(id));
    passSeconds(1);
    registry.checkTimeouts();
    EXPECT_FALSE(holds(id));
}

TEST_F(ExecutorRegistry, ShutdownStopsAndDropsEveryRun)
{
    const auto one = registry.createPdExecutor(emptyConfig());
    const auto two = registry.createPdExecutor(emptyConfig());
    registry.shutdown();
    EXPECT_TRUE(isStopped(*one));
    EXPECT_TRUE(isStopped(*two));
    EXPECT_EQ(one.use_count(), 1);
    EXPECT_EQ(two.use_count(), 1);
}

TEST_F(ExecutorRegistry, ShutdownStopsEveryRunBeforeItWaitsForAny)
{
    createBusy("10.0.0.1");
    createBusy("10.0.0.2");
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    registry.shutdown();
    EXPECT_EQ(entered("open 10.0.0.1"), 0U);
    EXPECT_EQ(entered("open 10.0.0.2"), 0U);
    EXPECT_TRUE(queue->unfinished().empty());
}

TEST_F(ExecutorRegistry, ShutdownHoldsTheLockWhileRunsDrain)
{
    createBusy();
    std::future<std::string> lookup;
    journal.during("sleep 200 ms", [&] {
        lookup = std::async(std::launch::async, [&] { return refusal([&] { registry.getPdExecutor(1); }); });
        EXPECT_TRUE(isHeldUp(lookup));
        queue->completeAll();
    });
    registry.shutdown();
    EXPECT_EQ(lookup.get(), "Invalid operation occurred in the function: getPdExecutor");
}

TEST_F(ExecutorRegistry, AClosedRegistryRefusesByTheNameOfTheOperation)
{
    create();
    registry.shutdown();
    const std::string refused = "Invalid operation occurred in the function: ";
    EXPECT_EQ(refusal([this] { registry.createPdExecutor(emptyConfig()); }), refused + "createPdExecutor");
    EXPECT_EQ(refusal([this] { registry.getPdExecutor(1); }), refused + "getPdExecutor");
    EXPECT_EQ(refusal([this] { registry.removePdExecutor(1); }), refused + "removePdExecutor");
    EXPECT_EQ(refusal([this] { registry.checkTimeouts(); }), refused + "checkTimeouts");
}

TEST_F(ExecutorRegistry, TheRefusalIsAnExceptionOfTheFramework)
{
    registry.shutdown();
    EXPECT_THROW(registry.checkTimeouts(), Kep::GenericException);
    EXPECT_THROW(registry.checkTimeouts(), std::exception);
}

TEST_F(ExecutorRegistry, AClosedRegistryCanBeShutDownAgain)
{
    registry.shutdown();
    EXPECT_NO_THROW(registry.shutdown());
}

TEST_F(ExecutorRegistry, ARegistryThatIsDestroyedOpenWaitsForItsRunsWithoutStoppingThem)
{
    auto other = std::make_unique<PdExecutorRegistry>(queue);
    other->createPdExecutor(emptyConfig())->sweep({{"10.0.0.1", "10.0.0.1"}}, {});
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    other.reset();
    EXPECT_EQ(entered("open 10.0.0.1"), 1U);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
