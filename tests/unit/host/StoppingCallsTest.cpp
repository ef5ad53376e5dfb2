#include "host/StoppingCalls.h"

#include "host/Errors.h"
#include "tests/unit/host/FakePlugin.h"

#include <Kep/Platform/Plugin.h>
#include <Kep/Platform/Proxy/Tasks.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <functional>
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

/// A plug-in whose starts put a task on the host's queue, which waits until the test lets it go on.
class WorkingPlugin : public FakePlugin {
public:
    ~WorkingPlugin() override
    {
        release();
        host_->deinit();
    }

    std::string call(const PluginCall& call, const Entering& entering) override
    {
        const Kep::Host::Call scope;
        if (entering)
            entering(scope.id());
        note(call.operation);
        if (call.operation.starts_with("start"))
            submit();
        if (call.operation == "startDiscoveryBlocking")
            Kep::Host::waitForWork(scope.id());
        if (call.operation == "startDiscovery" && call.params.find("throw") != std::string::npos)
            throw Failure("no reply");
        return FakePlugin::call(call, {});
    }

    /// Lets the tasks go on.
    void release()
    {
        const std::lock_guard lock(mutex_);
        released_ = true;
        changed_.notify_all();
    }

    bool waitForWorking(int count)
    {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 30s, [&] { return working_ == count; });
    }

    /// Operations as they were entered, and the ends of tasks.
    std::vector<std::string> events()
    {
        const std::lock_guard lock(mutex_);
        return events_;
    }

private:
    void note(const std::string& event)
    {
        const std::lock_guard lock(mutex_);
        events_.push_back(event);
    }

    void submit()
    {
        tasks_.submit(std::make_shared<Kep::Tasks::Task>(
                          "probe", [this](Kep::Tasks::RunContext&) { return work(); },
                          [this](Kep::Tasks::FinishContext&) { note("end of a task"); }),
                      "group", 0);
    }

    bool work()
    {
        std::unique_lock lock(mutex_);
        ++working_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return released_; });
        return true;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool released_ = false;
    int working_ = 0;
    std::vector<std::string> events_;
    std::shared_ptr<Kep::Platform::Plugin> host_ = std::make_shared<Kep::Platform::Plugin>();
    Kep::Platform::Proxy::Tasks::Proxy tasks_{host_->serviceCaller(), host_->callbacks(), "TaskQueue"};
};

class Stops : public testing::Test {
protected:
    std::string say(const std::string& operation, const std::string& params)
    {
        return calls.call({"PrinterDiscovery", operation, params}, {});
    }

    /// Says it on a thread of its own and returns when it is where it waits.
    void sayAside(const std::string& operation, const std::string& params)
    {
        asides.emplace_back([=, this] { say(operation, params); });
    }

    void start(const std::string& params = R"({"cookie":"a"})")
    {
        say("startDiscovery", params);
        ASSERT_TRUE(plugin.waitForWorking(++started));
    }

    void finish()
    {
        plugin.release();
        asides.clear();
    }

    WorkingPlugin plugin;
    StoppingCalls calls{plugin};
    int started = 0;
    std::vector<std::jthread> asides;
};

TEST_F(Stops, ReachThePluginWhenTheWorkHasDrained)
{
    start();
    sayAside("stopDiscovery", R"({"cookie":"a"})");
    std::this_thread::sleep_for(50ms);
    say("getStatus", R"({"cookie":"a","firstIdx":0})");
    finish();
    EXPECT_THAT(plugin.events(), ElementsAre("startDiscovery", "getStatus", "end of a task", "stopDiscovery"));
}

TEST_F(Stops, EndABlockingStart)
{
    sayAside("startDiscoveryBlocking", R"({"cookie":"a"})");
    ASSERT_TRUE(plugin.waitForWorking(1));
    sayAside("stopDiscovery", R"({"cookie":"a"})");
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(plugin.events(), ElementsAre("startDiscoveryBlocking"));
    finish();
    EXPECT_THAT(plugin.events(), ElementsAre("startDiscoveryBlocking", "end of a task", "stopDiscovery"));
}

TEST_F(Stops, OfCookiesThatNobodyStartedGoThrough)
{
    start();
    EXPECT_EQ(say("stopDiscovery", R"({"cookie":"b"})"), "{}");
    EXPECT_THAT(plugin.events(), ElementsAre("startDiscovery", "stopDiscovery"));
}

TEST_F(Stops, WithoutAReadableCookieGoThroughAsTheyAre)
{
    start();
    for (const char* params : {"", "{", "[]", "7", "null", "{}", R"({"cookie":7})", R"(["cookie"])", R"("cookie")"}) {
        say("stopDiscovery", params);
        EXPECT_EQ(plugin.calls().back().params, params);
    }
}

TEST_F(Stops, WaitForTheRunThatTheCookieNamesAndNotForAnEarlierOne)
{
    start();
    plugin.reply("startDiscovery", R"({"code":"internalServerError","message":"","data":null,"operation":{}})");
    say("startDiscovery", R"({"cookie":"b"})");
    ASSERT_TRUE(plugin.waitForWorking(2));
    say("stopDiscovery", R"({"cookie":"b"})");
    EXPECT_THAT(plugin.events(), ElementsAre("startDiscovery", "startDiscovery", "stopDiscovery"));
}

TEST_F(Stops, ArePreparedForStartsThatThrow)
{
    EXPECT_THROW(say("startDiscovery", R"({"cookie":"throw"})"), Failure);
    ASSERT_TRUE(plugin.waitForWorking(1));
    say("stopDiscovery", R"({"cookie":"throw"})");
    EXPECT_THAT(plugin.events(), ElementsAre("startDiscovery", "stopDiscovery"));
}

TEST_F(Stops, KeepStartsWhoseCookieIsNotReadableAsTheyAre)
{
    say("startDiscovery", "{");
    say("startDiscovery", R"({"cookie":null})");
    EXPECT_EQ(plugin.calls().size(), 2U);
}

TEST_F(Stops, KeepRepliesAsTheyAreThoughTheyAreNoJson)
{
    plugin.reply("startDiscovery", "no JSON");
    EXPECT_EQ(say("startDiscovery", R"({"cookie":"a"})"), "no JSON");
}

TEST_F(Stops, TellTheIdOfEveryCall)
{
    for (const char* operation : {"startDiscovery", "startDiscoveryBlocking", "stopDiscovery", "getStatus"}) {
        plugin.release();
        Kep::Host::CallId told = 0;
        calls.call({"PrinterDiscovery", operation, R"({"cookie":"a"})"}, [&](auto id) { told = id; });
        EXPECT_NE(told, 0U) << operation;
    }
}

TEST_F(Stops, PassWithdrawalsOn)
{
    EXPECT_THAT(plugin.withdrawn(), IsEmpty());
    calls.withdraw(17);
    EXPECT_THAT(plugin.withdrawn(), ElementsAre(17));
}

} // namespace
} // namespace Host
