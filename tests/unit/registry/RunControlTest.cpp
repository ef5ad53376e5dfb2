#include "registry/RunControl.h"

#include "Kep/Exception.h"
#include "RegistryFixture.h"

#include <limits>
#include <optional>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Control : public WithFakes {
protected:
    ~Control() override { queue->withdrawAll(); }

    // The id that the table has for a cookie.
    std::optional<std::int32_t> named(const std::string& cookie)
    {
        const Kep::MutexLock lock(cookies.mutex);
        const auto entry = cookies.runs.find(cookie);
        return entry == cookies.runs.end() ? std::nullopt : std::optional(entry->second);
    }

    void name(const std::string& cookie, std::int32_t id)
    {
        const Kep::MutexLock lock(cookies.mutex);
        cookies.runs[cookie] = id;
    }

    bool tableIsFree()
    {
        auto locking = std::async(std::launch::async, [this] { named(""); });
        const bool free = !isHeldUp(locking);
        pendingLocks.push_back(std::move(locking));
        return free;
    }

    bool holds(std::int32_t id) { return registry.getPdExecutor(id) != nullptr; }

    // A finished run that nobody touched for more than a day.
    std::int32_t leaveTimedOutRun()
    {
        const std::int32_t id = control.startRun(emptyConfig());
        time.advance(86401 * second);
        return id;
    }

    // A run of five printers, 10.0.0.1 to 10.0.0.5, named "c", whose last task has not finished.
    void findFivePrinters()
    {
        for (int host = 1; host <= 5; ++host)
            snmp.agent("10.0.0." + std::to_string(host)).isPrinter();
        control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.5"));
        for (const std::uint32_t id : queue->waiting())
            queue->run(id);
    }

    std::vector<std::string> printersFrom(std::int32_t firstIdx)
    {
        std::vector<std::string> addresses;
        for (const PrinterRecord& printer : control.getStatus("c", firstIdx).printers)
            addresses.push_back(printer.ip);
        return addresses;
    }

    PdExecutorRegistry registry{queue};
    CookieTable cookies;
    RunControl control{registry, cookies};
    std::vector<std::future<void>> pendingLocks;
};

TEST_F(Control, AStartedRunKnowsItsTotalAndHasItsFirstSliceQueued)
{
    DiscoveryConfig config = configOf("10.0.0.0", "10.0.0.20");
    config.excludeRanges = {{"10.0.0.5", "10.0.0.7"}};
    EXPECT_EQ(control.startRun(config), 1);
    EXPECT_EQ(queue->descriptions("Test IP").size(), 17U);
    const DiscoveryStatus status = control.statusOf(1);
    EXPECT_EQ(status.total, 17U);
    EXPECT_EQ(status.step, 0U);
    EXPECT_EQ(status.state, 2U);
    EXPECT_EQ(status.cookie, "");
}

TEST_F(Control, TheTotalCountsTheWholeOfLargeRanges)
{
    control.startRun(configOf("10.0.0.0", "10.0.255.255"));
    EXPECT_EQ(control.statusOf(1).total, 65024U);
    EXPECT_EQ(queue->submissions().size(), 257U);
}

TEST_F(Control, ARunWithoutAddressesIsFinishedAtOnce)
{
    control.startRun(emptyConfig());
    const DiscoveryStatus status = control.statusOf(1);
    EXPECT_EQ(status.total, 0U);
    EXPECT_EQ(status.step, 0U);
    EXPECT_EQ(status.state, 1U);
}

TEST_F(Control, ProgressIsResetBeforeTheFirstSweep)
{
    queue->failSubmission(1);
    EXPECT_THROW(control.startRun(configOf("10.0.0.1", "10.0.0.9")), Kep::GenericException);
    EXPECT_EQ(control.statusOf(1).total, 9U);
}

TEST_F(Control, TheCookieIsEnteredAfterTheFirstSlice)
{
    std::vector<bool> known;
    journal.during("submit Test IP", [&] { known.push_back(named("c").has_value()); });
    EXPECT_TRUE(control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.2")));
    EXPECT_THAT(known, ElementsAre(false, false));
    EXPECT_EQ(named("c"), 1);
}

TEST_F(Control, AStartThatFailsNamesNothingAndLeavesItsRun)
{
    name("c", 42);
    queue->failSubmission(2);
    EXPECT_THROW(control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.3")), Kep::GenericException);
    EXPECT_EQ(named("c"), 42);
    EXPECT_TRUE(holds(1));
    EXPECT_EQ(queue->submissions().size(), 1U);
}

TEST_F(Control, ASecondStartTakesTheCookieOver)
{
    control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_TRUE(control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.2")));
    EXPECT_EQ(named("c"), 2);
    EXPECT_EQ(control.getStatus("c", 0).total, 2U);
    EXPECT_EQ(control.statusOf(1).state, 2U) << "the first run goes on";
    queue->completeAll();
    EXPECT_EQ(control.statusOf(1).step, 1U);
    time.advance(86401 * second);
    control.stopDiscovery("c");
    EXPECT_FALSE(holds(1)) << "and times out";
}

TEST_F(Control, CookiesAreComparedBytewise)
{
    const std::string withNul("a\0b", 3);
    control.startDiscovery(withNul, emptyConfig());
    control.startDiscovery("a", emptyConfig());
    control.startDiscovery("\xe4", emptyConfig());
    control.startDiscovery("", emptyConfig());
    EXPECT_EQ(named(withNul), 1);
    EXPECT_EQ(named("a"), 2);
    EXPECT_EQ(named("\xe4"), 3);
    EXPECT_EQ(named(""), 4);
    EXPECT_FALSE(named("A"));
}

TEST_F(Control, APlainStartAndAStatusSweepNoTimeOuts)
{
    const std::int32_t idle = leaveTimedOutRun();
    control.startDiscovery("c", emptyConfig());
    control.getStatus("c", 0);
    control.getStatus("unknown", 0);
    EXPECT_TRUE(holds(idle));
}

TEST_F(Control, ABlockingStartSweepsTimeOutsFirst)
{
    const std::int32_t idle = leaveTimedOutRun();
    bool goneBefore = false;
    journal.during("submit Test IP", [&] { goneBefore = !holds(idle); });
    journal.during("sleep 2 s", [this] { queue->completeAll(); });
    EXPECT_TRUE(control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.1")));
    EXPECT_TRUE(goneBefore);
}

TEST_F(Control, ABlockingStartOfARunWithoutWorkReturnsAtOnce)
{
    EXPECT_TRUE(control.startDiscoveryBlocking("c", emptyConfig()));
    EXPECT_THAT(journal.texts(), IsEmpty());
    EXPECT_EQ(named("c"), 1) << "its status is still to be collected";
}

TEST_F(Control, ABlockingStartReturnsAtTheLookAfterTheLastTask)
{
    int looks = 0;
    journal.during("sleep 2 s", [&] {
        if (++looks == 3)
            queue->completeAll();
    });
    control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.2"));
    EXPECT_EQ(looks, 3);
    EXPECT_EQ(entered("open 10.0.0.2"), 1U);
}

TEST_F(Control, TheWaitSleepsWithoutAnyLock)
{
    journal.during("sleep 2 s", [this] {
        EXPECT_TRUE(elsewhere([this] { return named("c").has_value(); }));
        EXPECT_TRUE(elsewhere([this] { return holds(1); }));
        EXPECT_TRUE(Fakes::isMutexFree(*registry.getPdExecutor(1)));
        queue->completeAll();
    });
    control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_EQ(entered("sleep 2 s"), 1U);
}

TEST_F(Control, AStopEndsTheWaitAndTheWaiterDestroysTheRun)
{
    journal.during("sleep 2 s", [this] {
        EXPECT_TRUE(elsewhere([this] { return control.stopDiscovery("c"); }));
        EXPECT_EQ(entered("sleep 200 ms"), 0U) << "the stop waited although the run is shared";
    });
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_EQ(entered("sleep 2 s"), 1U);
    EXPECT_EQ(entered("sleep 200 ms"), 1U);
    EXPECT_EQ(entered("open 10.0.0.1"), 1U);
    EXPECT_FALSE(holds(1));
}

TEST_F(Control, ACollectedStatusEndsTheWait)
{
    journal.during("sleep 2 s", [this] {
        queue->completeAll();
        EXPECT_EQ(control.getStatus("c", 0).state, 1U);
    });
    control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_TRUE(holds(1));
    EXPECT_FALSE(named("c"));
}

TEST_F(Control, ACookieTakenOverEndsTheWaitAndTheRunGoesOn)
{
    journal.during("sleep 2 s", [this] { control.startDiscovery("c", emptyConfig()); });
    control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_EQ(entered("sleep 2 s"), 1U);
    EXPECT_EQ(control.statusOf(1).state, 2U);
}

TEST_F(Control, TheWaitGoesOnAsLongAsAnyCookieNamesTheRun)
{
    name("another", 1);
    journal.during("sleep 2 s", [this] {
        if (entered("sleep 2 s") == 1)
            name("c", 99);
        else
            queue->completeAll();
    });
    control.startDiscoveryBlocking("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_EQ(entered("sleep 2 s"), 2U);
}

TEST_F(Control, AnUnknownRunIsNotWaitedFor)
{
    name("c", 5);
    control.waitForRun(5);
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Control, AStopRemovesTheRunAndForgetsTheCookie)
{
    control.startDiscovery("c", emptyConfig());
    EXPECT_TRUE(control.stopDiscovery("c"));
    EXPECT_FALSE(holds(1));
    EXPECT_FALSE(named("c"));
    EXPECT_FALSE(control.stopDiscovery("c"));
}

TEST_F(Control, AStopLetsTheWorkRunToItsEnd)
{
    control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.2"));
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    EXPECT_TRUE(control.stopDiscovery("c"));
    EXPECT_EQ(entered("open 10.0.0.1"), 1U);
    EXPECT_EQ(entered("open 10.0.0.2"), 1U);
}

TEST_F(Control, AStopHoldsTheTableWhileTheRunDrains)
{
    control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.1"));
    std::future<DiscoveryStatus> status;
    journal.during("sleep 200 ms", [&] {
        status = std::async(std::launch::async, [this] { return control.getStatus("c", 0); });
        EXPECT_TRUE(isHeldUp(status));
        queue->completeAll();
    });
    control.stopDiscovery("c");
    EXPECT_EQ(status.get().total, 0U) << "the status after a stop knows nothing of the run";
}

TEST_F(Control, AStopOfAnUnknownCookieOnlySweepsTimeOuts)
{
    const std::int32_t idle = leaveTimedOutRun();
    control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.1"));
    EXPECT_FALSE(control.stopDiscovery("C"));
    EXPECT_FALSE(holds(idle));
    EXPECT_EQ(named("c"), 2);
    EXPECT_TRUE(holds(2));
}

TEST_F(Control, AStopSweepsTimeOutsBeforeItLooksTheCookieUp)
{
    name("c", leaveTimedOutRun());
    EXPECT_TRUE(control.stopDiscovery("c")) << "a cookie whose run has gone is still known";
    EXPECT_FALSE(named("c"));
}

TEST_F(Control, TheStatusOfAnUnknownCookieIsFinishedAndEmpty)
{
    const DiscoveryStatus status = control.getStatus("nobody", 0);
    EXPECT_EQ(status.step, 0U);
    EXPECT_EQ(status.total, 0U);
    EXPECT_EQ(status.state, 1U);
    EXPECT_THAT(status.printers, IsEmpty());
    EXPECT_EQ(status.cookie, "nobody");
}

TEST_F(Control, ACookieWhoseRunHasGoneIsAnsweredLikeAnUnknownOneAndForgotten)
{
    name("c", 7);
    const DiscoveryStatus status = control.getStatus("c", 0);
    EXPECT_EQ(status.state, 1U);
    EXPECT_EQ(status.total, 0U);
    EXPECT_EQ(status.cookie, "c");
    EXPECT_FALSE(named("c"));
}

TEST_F(Control, TheStatusOfAnUnknownRunHasNoCookie)
{
    EXPECT_EQ(control.statusOf(9).state, 1U);
    EXPECT_EQ(control.statusOf(9).cookie, "");
}

TEST_F(Control, PrintersAreGivenFromTheIndexOn)
{
    findFivePrinters();
    EXPECT_THAT(printersFrom(0), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4", "10.0.0.5"));
    EXPECT_THAT(printersFrom(3), ElementsAre("10.0.0.4", "10.0.0.5"));
    EXPECT_THAT(printersFrom(4), ElementsAre("10.0.0.5"));
    EXPECT_THAT(printersFrom(5), IsEmpty());
    EXPECT_THAT(printersFrom(6), IsEmpty());
    EXPECT_THAT(printersFrom(std::numeric_limits<std::int32_t>::max()), IsEmpty());
}

TEST_F(Control, ANegativeIndexCountsAsZero)
{
    findFivePrinters();
    EXPECT_EQ(printersFrom(-1).size(), 5U);
    EXPECT_EQ(printersFrom(std::numeric_limits<std::int32_t>::min()).size(), 5U);
}

TEST_F(Control, TheIndexChangesNothingButThePrinters)
{
    findFivePrinters();
    const DiscoveryStatus status = control.getStatus("c", 5);
    EXPECT_EQ(status.step, 5U);
    EXPECT_EQ(status.total, 5U);
    EXPECT_EQ(status.state, 2U);
    EXPECT_EQ(status.cookie, "c");
}

TEST_F(Control, TheFirstFinishedStatusIsTheLast)
{
    findFivePrinters();
    EXPECT_EQ(control.getStatus("c", 0).state, 2U);
    EXPECT_EQ(named("c"), 1);
    queue->withdrawAll();
    const DiscoveryStatus last = control.getStatus("c", 0);
    EXPECT_EQ(last.state, 1U);
    EXPECT_EQ(last.printers.size(), 5U);

    const DiscoveryStatus repeated = control.getStatus("c", 0);
    EXPECT_EQ(repeated.state, 1U);
    EXPECT_EQ(repeated.step, 0U);
    EXPECT_EQ(repeated.total, 0U);
    EXPECT_THAT(repeated.printers, IsEmpty());
    EXPECT_FALSE(control.stopDiscovery("c"));
    EXPECT_TRUE(holds(1)) << "the run stays until it times out";
}

TEST_F(Control, AStatusRefreshesTheActivityOfItsRun)
{
    control.startDiscovery("c", configOf("10.0.0.1", "10.0.0.1"));
    time.advance(5 * second);
    control.getStatus("c", 0);
    EXPECT_EQ(registry.getPdExecutor(1)->lastActivity(), time.now());
}

TEST_F(Control, AStatusHoldsTheTableWhileItTakesTheSnapshot)
{
    control.startDiscovery("c", configOf("10.0.0.1", "10.0.3.254"));
    const std::uint32_t continuation = queue->waiting().back();
    std::future<DiscoveryStatus> status;
    bool tableWasHeld = false;
    // The submission holds the run's mutex, so the snapshot cannot be had meanwhile.
    journal.during("submit Test IP", [&] {
        if (status.valid())
            return;
        status = std::async(std::launch::async, [this] { return control.getStatus("c", 0); });
        for (int tries = 0; tries < 100 && !tableWasHeld; ++tries)
            tableWasHeld = !tableIsFree();
        EXPECT_TRUE(isHeldUp(status));
    });
    queue->run(continuation);
    EXPECT_TRUE(tableWasHeld);
    EXPECT_EQ(status.get().state, 2U);
}

TEST_F(Control, AClosedRegistryRefusesByTheFirstOperationReached)
{
    const auto refusal = [](auto operation) -> std::string {
        try {
            operation();
        } catch (const Kep::InvalidOperationException& error) {
            return error.what();
        }
        return "nothing was thrown";
    };
    control.startDiscovery("c", emptyConfig());
    registry.shutdown();
    const std::string refused = "Invalid operation occurred in the function: ";
    EXPECT_EQ(refusal([&] { control.startDiscovery("d", emptyConfig()); }), refused + "createPdExecutor");
    EXPECT_EQ(refusal([&] { control.startDiscoveryBlocking("d", emptyConfig()); }), refused + "checkTimeouts");
    EXPECT_EQ(refusal([&] { control.stopDiscovery("c"); }), refused + "checkTimeouts");
    EXPECT_EQ(refusal([&] { control.stopDiscovery("unknown"); }), refused + "checkTimeouts");
    EXPECT_EQ(refusal([&] { control.getStatus("c", 0); }), refused + "getPdExecutor");
    EXPECT_EQ(named("c"), 1) << "cookies stay";
    EXPECT_FALSE(named("d"));
}

TEST_F(Control, CookiesOutliveTheirRegistryAndMayNameARunOfTheNext)
{
    control.startDiscovery("old", emptyConfig());
    registry.shutdown();
    PdExecutorRegistry next(queue);
    RunControl restarted(next, cookies);
    restarted.startDiscovery("new", configOf("10.0.0.1", "10.0.0.3"));
    EXPECT_EQ(restarted.getStatus("old", 0).total, 3U);
    queue->withdrawAll();
    EXPECT_TRUE(restarted.stopDiscovery("old"));
    EXPECT_EQ(restarted.getStatus("new", 0).total, 0U);
}

TEST(CookieTables, TheProcessHasOne)
{
    EXPECT_EQ(&cookieTable(), &cookieTable());
}

} // namespace
} // namespace PrinterDiscoveryPlugin
