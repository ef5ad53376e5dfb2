#include "plugin/PrinterDiscoveryService.h"

#include "Kep/Exception.h"
#include "ServiceFixture.h"

#include <thread>

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Service : public WithPlugin {
protected:
    static constexpr auto success = R"({"success":true})";

    static std::string unknownStatus(const std::string& cookie)
    {
        return R"({"step":0,"total":0,"state":1,"cookie":")" + cookie + R"(","printers":[]})";
    }
    static std::string refusal(const std::string& operation)
    {
        return "Invalid operation occurred in the function: " + operation;
    }
};

TEST_F(Service, IsCalledPrinterDiscoveryAndCountsOnThePrintService)
{
    EXPECT_EQ(service->reference(), "PrinterDiscovery");
    EXPECT_THAT(service->dependencies(), ElementsAre("PrintService"));
}

TEST_F(Service, OffersItsOperationsInOrder)
{
    EXPECT_THAT(service->operationNames(),
                ElementsAre("startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"));
}

TEST_F(Service, StartGetsAProxyAndLoadsTheSettings)
{
    store->subtree = {{".oidDeviceType", Kep::Variant(".1.9")}};
    EXPECT_EQ(fakeTaskProxies().alive, 0);
    start();
    EXPECT_EQ(fakeTaskProxies().alive, 1);
    EXPECT_THAT(store->events, ElementsAre("begin", "getKeySubtree services.PrinterDiscovery", "commit", "destroyed"));
    EXPECT_EQ(identificationSettings().oidDeviceType, ".1.9");
}

TEST_F(Service, StopLetsGoOfTheProxyAndLeavesSettingsAndCookies)
{
    store->subtree = {{".oidDeviceType", Kep::Variant(".1.9")}};
    start();
    call("startDiscovery", startOf("c", "10.0.0.0", "10.0.0.0"));
    stop();
    EXPECT_EQ(fakeTaskProxies().alive, 0);
    EXPECT_EQ(identificationSettings().oidDeviceType, ".1.9");
    EXPECT_EQ(named("c"), 1);
}

TEST_F(Service, ARestartReadsTheSettingsAgainAndCountsRunsFromOne)
{
    start();
    call("startDiscovery", startOf("a", "10.0.0.0", "10.0.0.0"));
    stop();
    store->subtree = {{".oidDeviceType", Kep::Variant(".1.8")}};
    start();
    EXPECT_EQ(identificationSettings().oidDeviceType, ".1.8");
    call("startDiscovery", startOf("b", "10.0.0.0", "10.0.0.0"));
    EXPECT_EQ(named("b"), 1);
    EXPECT_EQ(named("a"), 1);
}

TEST_F(Service, ACookieFromBeforeARestartMayNameANewRun)
{
    start();
    call("startDiscovery", startOf("old", "10.0.0.0", "10.0.0.0"));
    stop();
    start();
    call("startDiscovery", startOf("new", "10.0.0.1", "10.0.0.3"));
    EXPECT_EQ(status("old"), R"({"step":0,"total":3,"state":2,"cookie":"old","printers":[]})");
}

TEST_F(Service, AStartWithoutDataStoreFailsAndOperationsFindNoRegistry)
{
    plugin->serviceLocator().store(typeid(Kep::Platform::Proxy::DataStore::Proxy).name(), 0);
    EXPECT_THROW(start(), Kep::GenericException);
    EXPECT_EQ(failure<Kep::InvalidOperationException>("stopDiscovery", R"({"cookie":"c"})"), refusal("checkTimeouts"));
    FakeDataStore::offer(plugin->serviceLocator(), store);
    start();
    EXPECT_EQ(answer("stopDiscovery", R"({"cookie":"c"})"), success);
}

TEST_F(Service, AStartWithoutTaskQueueFailsBeforeTheSettingsAreRead)
{
    plugin->serviceLocator().store(typeid(Kep::Platform::Proxy::Tasks::Proxy).name(), 0);
    try {
        start();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Kep::GenericException& error) {
        EXPECT_EQ(error.what(), std::string("Factory: invalid factory type for the reference ") +
                                    typeid(Kep::Platform::Proxy::Tasks::Proxy).name());
    }
    EXPECT_THAT(store->events, IsEmpty());
}

TEST_F(Service, ConfigurationComesFromTheDataStoreWhateverIsGiven)
{
    store->subtree = {{".oidDeviceType", Kep::Variant(".1.9")}};
    service->onConfigure(Kep::Variant(Kep::Variant::Object{{".oidDeviceType", Kep::Variant(".1.1")}}));
    EXPECT_EQ(identificationSettings().oidDeviceType, ".1.9");
}

TEST_F(Service, ARegistryLeftFromBeforeIsReplacedAndDestroyed)
{
    service->onStart();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1"));
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    service->onStart();
    EXPECT_EQ(entered("open 10.0.0.1"), 1U) << "the run of the earlier registry was told to stop";
    EXPECT_EQ(fakeTaskProxies().alive, 1);
    call("startDiscovery", startOf("d", "10.0.0.0", "10.0.0.0"));
    EXPECT_EQ(named("d"), 1);
    service->onStop();
}

TEST_F(Service, StartAnswersAtOnceAndTheRunGoesOn)
{
    start();
    EXPECT_EQ(answer("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.2")), success);
    EXPECT_EQ(status("c"), R"({"step":0,"total":2,"state":2,"cookie":"c","printers":[]})");
    snmp.agent("10.0.0.2").isPrinter();
    queue->completeAll();
    EXPECT_EQ(status("c", 1), R"({"step":2,"total":2,"state":1,"cookie":"c","printers":[]})");
    EXPECT_EQ(status("c"), unknownStatus("c"));
}

TEST_F(Service, TheStatusListsThePrinters)
{
    snmp.agent("10.0.0.1").isPrinter();
    start();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1"));
    queue->completeAll();
    EXPECT_THAT(status("c"), HasSubstr(R"("printers":[{"hostname":"","ip":"10.0.0.1","mac":[],"name":)"));
}

TEST_F(Service, ASecondStartUnderTheSameCookieTakesItOver)
{
    start();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1"));
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.2"));
    EXPECT_EQ(named("c"), 2);
    EXPECT_EQ(queue->unfinished().size(), 3U);
}

TEST_F(Service, ABlockingStartAnswersWhenTheRunHasFinished)
{
    start();
    journal.during("sleep 2 s", [this] { queue->completeAll(); });
    EXPECT_EQ(answer("startDiscoveryBlocking", startOf("c", "10.0.0.1", "10.0.0.1")), success);
    EXPECT_EQ(entered("sleep 2 s"), 1U);
    EXPECT_EQ(status("c"), R"({"step":1,"total":1,"state":1,"cookie":"c","printers":[]})");
}

TEST_F(Service, OtherOperationsProceedDuringABlockingStart)
{
    start();
    journal.during("sleep 2 s", [this] {
        EXPECT_EQ(std::async(std::launch::async, [this] { return status("c"); }).get(),
                  R"({"step":0,"total":1,"state":2,"cookie":"c","printers":[]})");
        EXPECT_EQ(std::async(std::launch::async, [this] { return answer("stopDiscovery", R"({"cookie":"c"})"); }).get(),
                  success);
    });
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    EXPECT_EQ(answer("startDiscoveryBlocking", startOf("c", "10.0.0.1", "10.0.0.1")), success);
}

TEST_F(Service, OnlyBlockingStartAndStopSweepTimeOuts)
{
    start();
    const auto leaveTimedOutRun = [this] {
        call("startDiscovery", startOf("idle", "10.0.0.1", "10.0.0.1"));
        queue->completeAll();
        time.advance(86401 * second);
    };
    const auto isThere = [this] { return status("idle") != unknownStatus("idle"); };
    leaveTimedOutRun();
    call("startDiscovery", startOf("c", "10.0.0.0", "10.0.0.0"));
    status("c");
    EXPECT_TRUE(isThere());
    leaveTimedOutRun();
    call("startDiscoveryBlocking", startOf("c", "10.0.0.0", "10.0.0.0"));
    EXPECT_FALSE(isThere());
    leaveTimedOutRun();
    call("stopDiscovery", R"({"cookie":"unknown"})");
    EXPECT_FALSE(isThere());
}

TEST_F(Service, AStopOfAnUnknownCookieSucceedsAndChangesNothing)
{
    start();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1"));
    EXPECT_EQ(answer("stopDiscovery", R"({"cookie":"nobody"})"), success);
    EXPECT_EQ(status("c"), R"({"step":0,"total":1,"state":2,"cookie":"c","printers":[]})");
}

TEST_F(Service, AStopAnswersWhenTheRunHasEnded)
{
    start();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1"));
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    EXPECT_EQ(answer("stopDiscovery", R"({"cookie":"c"})"), success);
    EXPECT_EQ(entered("open 10.0.0.1"), 1U);
    EXPECT_EQ(status("c"), unknownStatus("c"));
}

TEST_F(Service, TheStatusOfAnUnknownCookieEchoesIt)
{
    start();
    EXPECT_EQ(status("no \\\"body\\\""), unknownStatus("no \\\"body\\\""));
    EXPECT_EQ(status("nobody", -5), unknownStatus("nobody"));
}

TEST_F(Service, MalformedParametersFailInEveryOperation)
{
    start();
    for (const char* operation : {"startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"})
        for (const char* params : {"", "{", "[]", "7", "null", "{}"})
            EXPECT_THROW(call(operation, params), Kep::GenericException) << operation << ' ' << params;
    EXPECT_THAT(queue->submissions(), IsEmpty());
}

TEST_F(Service, AMissingParameterIsNamedInTheOrderOfReading)
{
    start();
    using Error = Kep::GenericException;
    EXPECT_THAT(failure<Error>("startDiscovery", "{}"), HasSubstr("config"));
    EXPECT_THAT(failure<Error>("startDiscoveryBlocking", "{}"), HasSubstr("config"));
    EXPECT_THAT(failure<Error>("stopDiscovery", "{}"), HasSubstr("\"cookie\""));
    EXPECT_THAT(failure<Error>("getStatus", "{}"), HasSubstr("\"firstIdx\""));
    EXPECT_THAT(failure<Error>("getStatus", R"({"firstIdx":0})"), HasSubstr("\"cookie\""));
    EXPECT_THAT(failure<Error>("getStatus", R"({"firstIdx":"0","cookie":"c"})"), HasSubstr("\"firstIdx\""));
    EXPECT_THAT(failure<Error>("getStatus", R"({"firstIdx":0,"cookie":7})"), HasSubstr("\"cookie\""));
}

TEST_F(Service, AStartWhoseParametersAreIncompleteLeavesNoRun)
{
    start();
    std::string withoutCookie = startOf("c", "10.0.0.1", "10.0.0.1");
    withoutCookie.replace(withoutCookie.find("cookie"), 6, "cookee");
    EXPECT_THAT(failure<Kep::GenericException>("startDiscovery", withoutCookie), HasSubstr("\"cookie\""));
    EXPECT_THAT(queue->submissions(), IsEmpty());
    call("startDiscovery", startOf("c", "10.0.0.0", "10.0.0.0"));
    EXPECT_EQ(named("c"), 1);
}

TEST_F(Service, AStoppedServiceRefusesByTheRegistryOperationItWouldHaveReached)
{
    using Error = Kep::InvalidOperationException;
    const auto refusesEverything = [this] {
        EXPECT_EQ(failure<Error>("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1")), refusal("createPdExecutor"));
        EXPECT_EQ(failure<Error>("startDiscoveryBlocking", startOf("c", "10.0.0.1", "10.0.0.1")),
                  refusal("checkTimeouts"));
        EXPECT_EQ(failure<Error>("stopDiscovery", R"({"cookie":"nobody"})"), refusal("checkTimeouts"));
        EXPECT_EQ(failure<Error>("getStatus", R"({"cookie":"nobody","firstIdx":0})"), refusal("getPdExecutor"));
    };
    refusesEverything();
    start();
    stop();
    refusesEverything();
    EXPECT_FALSE(named("c"));
}

TEST_F(Service, AStoppedServiceStillReadsTheParametersFirst)
{
    EXPECT_THAT(failure<Kep::GenericException>("getStatus", "{}"), HasSubstr("\"firstIdx\""));
    EXPECT_THAT(failure<Kep::GenericException>("startDiscovery", R"({"config":{}})"), HasSubstr("pingTimeout"));
}

TEST_F(Service, AStopOfTheServiceStopsTheRunsAndWaitsForTheirTasks)
{
    start();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.2"));
    journal.during("sleep 200 ms", [this] { queue->completeAll(); });
    stop();
    EXPECT_TRUE(queue->unfinished().empty());
    EXPECT_EQ(entered("open 10.0.0.1"), 0U);
}

TEST_F(Service, AStatusTakesNoLockOfItsOwn)
{
    start();
    call("startDiscovery", startOf("c", "10.0.0.1", "10.0.0.1"));
    journal.during("sleep 200 ms", [this] {
        EXPECT_EQ(std::async(std::launch::async, [this] { return status("nobody"); }).get(), unknownStatus("nobody"))
            << "asked while the service's start and stop are locked";
        queue->completeAll();
    });
    stop();
}

TEST_F(Service, AStopOfTheServiceWaitsForTheOperationsInside)
{
    start();
    std::future<void> stopping;
    journal.during("sleep 2 s", [&] {
        stopping = std::async(std::launch::async, [this] { stop(); });
        EXPECT_TRUE(isHeldUp(stopping));
        // Nobody gets in any more.
        std::string refused;
        while ((refused = failure<Kep::InvalidOperationException>(
                    "getStatus", R"({"cookie":"nobody","firstIdx":0})")) == "nothing was thrown")
            std::this_thread::yield();
        EXPECT_EQ(refused, refusal("getPdExecutor"));
        EXPECT_TRUE(isHeldUp(stopping));
        EXPECT_EQ(fakeTaskProxies().alive, 1);
        queue->completeAll();
    });
    EXPECT_EQ(answer("startDiscoveryBlocking", startOf("c", "10.0.0.1", "10.0.0.1")), success);
    stopping.get();
    EXPECT_EQ(fakeTaskProxies().alive, 0);
    EXPECT_EQ(entered("open 10.0.0.1"), 0U) << "the run was not told to stop";
}

TEST_F(Service, ItsRegistryGoesWithIt)
{
    start();
    EXPECT_EQ(fakeTaskProxies().alive, 1);
    fakePlugin().services.clear();
    service.reset();
    EXPECT_EQ(fakeTaskProxies().alive, 0);
    plugin = createPlugin();
    service = std::static_pointer_cast<PrinterDiscoveryService>(fakePlugin().services.back());
}

} // namespace
} // namespace PrinterDiscoveryPlugin
