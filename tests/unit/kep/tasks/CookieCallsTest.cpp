#include "Kep/Host/CookieCalls.h"

#include "Kep/Platform/Proxy/Tasks.h"
#include "tasks/ServiceCaller.h"
#include "tests/unit/kep/tasks/QueueFixture.h"

namespace {

using namespace Kep::Testing;
using Kep::Host::Call;
using Kep::Host::CallId;
using Kep::Host::CookieCalls;

/// Starts whose work stays at a gate, on the queue of the process.
class CookieCallsOfAHost : public testing::Test {
protected:
    ~CookieCallsOfAHost() override
    {
        gate_.open();
        account_->close();
    }

    /// A start that leaves a task at the gate, which will submit another one.
    CallId start(const std::string& cookie)
    {
        const Call call;
        calls_.starting(cookie, call.id());
        submitWork();
        calls_.started(cookie, call.id());
        return call.id();
    }

    CallId startInVain(const std::string& cookie)
    {
        const Call call;
        calls_.starting(cookie, call.id());
        calls_.failed(cookie, call.id());
        return call.id();
    }

    void submitWork()
    {
        const int before = gate_.waiting();
        submit([this] {
            gate_.pass();
            submit([this] {
                ++ran_;
                return true;
            });
            return true;
        });
        ASSERT_TRUE(eventually([&] { return gate_.waiting() == before + 1; }));
    }

    void submit(std::function<bool()> run)
    {
        const auto task = std::make_shared<Kep::Tasks::Task>(
            "a task", [work = std::move(run)](Kep::Tasks::RunContext&) { return work(); },
            [this](Kep::Tasks::FinishContext& context) { withdrawn_ += context.ran ? 0 : 1; });
        proxy_.submit(task, "a group", 0);
    }

    static bool worksOn(CallId call) { return Kep::Host::workOf(call).running > 0; }

    /// Withdraws while the gate is shut, then opens it.
    void withdraw(const std::string& cookie)
    {
        std::atomic<bool> returned{false};
        std::thread thread([&] {
            calls_.withdrawAndWait(cookie);
            returned = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(returned) << "the work at the gate is waited for";
        gate_.open();
        thread.join();
    }

    CookieCalls calls_;
    Gate gate_;
    std::atomic<int> ran_{0};
    std::atomic<int> withdrawn_{0};
    Kep::Platform::LocalServiceCaller caller_;
    std::shared_ptr<Kep::Platform::CallbacksService> account_ = std::make_shared<Kep::Platform::CallbacksService>();
    Kep::Platform::Proxy::Tasks::Proxy proxy_{caller_, account_, "TaskQueue"};
};

TEST_F(CookieCallsOfAHost, WithdrawTheWorkOfTheirCookieAndWaitForIt)
{
    const CallId call = start("a");
    withdraw("a");
    EXPECT_TRUE(Kep::Host::hasEnded(call));
    EXPECT_EQ(ran_, 0);
    EXPECT_EQ(withdrawn_, 1);
}

TEST_F(CookieCallsOfAHost, LeaveTheWorkOfOtherCookiesAlone)
{
    start("a");
    const CallId other = start("b");
    withdraw("a");
    Kep::Host::waitForWork(other);
    EXPECT_EQ(ran_, 1);
    EXPECT_EQ(withdrawn_, 1);
}

TEST_F(CookieCallsOfAHost, ReturnAtOnceForAnUnknownCookie)
{
    const CallId call = start("a");
    calls_.withdrawAndWait("b");
    calls_.withdrawAndWait("");
    EXPECT_TRUE(worksOn(call));
}

TEST_F(CookieCallsOfAHost, WithdrawWhatWasStartedLastAndNotWhatWasBeforeIt)
{
    const CallId first = start("a");
    start("a");
    withdraw("a");
    Kep::Host::waitForWork(first);
    EXPECT_EQ(ran_, 1);
    EXPECT_EQ(withdrawn_, 1);
}

TEST_F(CookieCallsOfAHost, PassOverStartsThatFailed)
{
    start("a");
    startInVain("a");
    withdraw("a");
    EXPECT_EQ(withdrawn_, 1);
}

TEST_F(CookieCallsOfAHost, WithdrawAStartThatIsStillUnderWay)
{
    const Call call;
    calls_.starting("a", call.id());
    calls_.withdrawAndWait("a");
    submit([this] {
        ++ran_;
        return true;
    });
    Kep::Host::waitForWork(call.id());
    EXPECT_EQ(ran_, 0);
    EXPECT_EQ(withdrawn_, 1);
}

TEST_F(CookieCallsOfAHost, ForgetWhatFailed)
{
    startInVain("a");
    EXPECT_EQ(calls_.size(), 0U);
}

TEST_F(CookieCallsOfAHost, StayFewHoweverManyCallsHaveEnded)
{
    const CallId working = start("working");
    for (int i = 0; i < 10'000; ++i) {
        const Call call;
        calls_.starting(std::to_string(i), call.id());
        calls_.started(std::to_string(i), call.id());
    }
    EXPECT_LE(calls_.size(), 128U);
    for (int i = 0; i < 1'000; ++i) {
        const Call call;
        calls_.starting("always the same", call.id());
        calls_.started("always the same", call.id());
    }
    EXPECT_LE(calls_.size(), 128U);
    EXPECT_TRUE(worksOn(working));
    withdraw("working");
    EXPECT_EQ(withdrawn_, 1) << "what has work is not forgotten";
}

} // namespace
