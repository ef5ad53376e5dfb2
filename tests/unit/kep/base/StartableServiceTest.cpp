#include "Kep/Platform/StartableService.h"

#include "Kep/Exception.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

using Kep::Variant;

namespace {

class Machine : public Kep::Platform::StartableService {
public:
    Machine()
    {
        setReference("Machine");
        dependencies_ = {"Power"};
        addOperation("work", [](const std::string& params) { return Variant(params); });
        addOperation("wait", [this](const std::string&) {
            inHook_.get_future().wait();
            return resultSuccess();
        });
    }

    void onStart() override
    {
        enterHook();
        log_ += "start ";
        if (failStart_) {
            leaveHook();
            throw std::runtime_error("cannot start");
        }
        leaveHook();
    }

    void onStop() override
    {
        enterHook();
        log_ += "stop ";
        leaveHook();
        if (failStop_) {
            throw std::runtime_error("cannot stop");
        }
    }

    void onConfigure(const Variant&) override { log_ += "configure "; }

    std::string state() { return static_cast<std::string>(getServiceConfig()["state"]); }

    std::string log_; // written in hooks only, which never overlap
    bool failStart_ = false;
    bool failStop_ = false;
    std::atomic<int> overlaps_{0};
    std::promise<void> inHook_;

private:
    void enterHook() { overlaps_ += hooks_.fetch_add(1); }
    void leaveHook() { --hooks_; }

    std::atomic<int> hooks_{0};
};

TEST(StartableServices, StartAndStopThroughTheirHooks)
{
    Machine machine;
    EXPECT_EQ(machine.state(), "stopped");
    machine.startService();
    EXPECT_EQ(machine.state(), "started");
    machine.stopService();
    EXPECT_EQ(machine.state(), "stopped");
    machine.startService();
    EXPECT_EQ(machine.log_, "start stop start ");
}

TEST(StartableServices, ASecondStartOrStopDoesNothing)
{
    Machine machine;
    machine.stopService();
    machine.startService();
    machine.startService();
    machine.stopService();
    machine.stopService();
    EXPECT_EQ(machine.log_, "start stop ");
}

TEST(StartableServices, AreStartedAndStoppedByCalls)
{
    Machine machine;
    EXPECT_EQ(machine.call("startService", "not even JSON").toJson(), R"({"success":true})");
    EXPECT_EQ(machine.call("startService", "").toJson(), R"({"success":true})");
    EXPECT_EQ(machine.call("stopService", "").toJson(), R"({"success":true})");
    EXPECT_EQ(machine.log_, "start stop ");
}

TEST(StartableServices, DescribeThemselves)
{
    Machine machine;
    EXPECT_EQ(machine.getServiceConfig().toJson(),
              R"({"reference":"Machine","state":"stopped","dependencies":["Power"],"operations":["work","wait"]})");
    machine.startService();
    EXPECT_EQ(machine.call("getServiceConfig", "").toJson(),
              R"({"reference":"Machine","state":"started","dependencies":["Power"],"operations":["work","wait"]})");
}

TEST(StartableServices, AnswerTheirOwnOperationsWhateverTheirState)
{
    Machine machine;
    EXPECT_EQ(static_cast<std::string>(machine.call("work", "p")), "p");
    EXPECT_THROW(machine.call("onStart", ""), Kep::NotFoundException);
}

TEST(StartableServices, AFailedStartLeavesThemStopped)
{
    Machine machine;
    machine.failStart_ = true;
    EXPECT_THROW(machine.startService(), std::runtime_error);
    EXPECT_EQ(machine.state(), "stopped");
    machine.stopService();
    EXPECT_EQ(machine.log_, "start ") << "nothing to stop";
    machine.failStart_ = false;
    machine.startService();
    EXPECT_EQ(machine.state(), "started");
}

TEST(StartableServices, AFailedStopCountsAsAStop)
{
    Machine machine;
    machine.startService();
    machine.failStop_ = true;
    EXPECT_THROW(machine.stopService(), std::runtime_error);
    EXPECT_EQ(machine.state(), "stopped");
    EXPECT_NO_THROW(machine.stopService());
    machine.startService();
    EXPECT_EQ(machine.log_, "start stop start ");
}

TEST(StartableServices, AreFoundBehindTheirBaseClass)
{
    const std::unique_ptr<Kep::Platform::Service> service = std::make_unique<Machine>();
    ASSERT_NE(dynamic_cast<Kep::Platform::IStartable2*>(service.get()), nullptr);
}

TEST(StartableServices, StartsAndStopsAtOnceNeverOverlap)
{
    Machine machine;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&machine, thread] {
            for (int round = 0; round < 200; ++round) {
                machine.call(thread % 2 == 0 ? "startService" : "stopService", "");
                machine.call("getServiceConfig", "");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    machine.stopService();
    EXPECT_EQ(machine.overlaps_, 0);
    for (std::size_t at = 0; at < machine.log_.size(); at += 11) {
        ASSERT_EQ(machine.log_.substr(at, 11), "start stop ") << "hooks alternate, start first";
    }
}

TEST(StartableServices, GoOnAnsweringWhileTheyStop)
{
    class SlowToStop : public Machine {
    public:
        void onStop() override { static_cast<void>(call("work", "inside")), inHook_.set_value(); }
    } machine;
    machine.startService();
    auto waiting = std::async(std::launch::async, [&machine] { machine.call("wait", ""); });
    machine.stopService();
    ASSERT_EQ(waiting.wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

} // namespace
