#include "tests/unit/kep/tasks/QueueFixture.h"

#include "base/CurrentCall.h"

namespace {

using namespace Kep::Testing;
using Kep::CurrentCall;

class TaskQueueCalls : public QueueTest {
protected:
    void SetUp() override { makeQueue(1); }

    // Submits under `call`, as a host does that has entered the plug-in for it.
    void under(Kep::Host::CallId call, const std::function<void()>& action)
    {
        queue_->openCall(call);
        {
            const CurrentCall scope(call);
            action();
        }
        queue_->closeCall(call);
    }

    std::vector<std::string> eventsAfterAll()
    {
        waitForAll();
        return log_.events();
    }
};

TEST_F(TaskQueueCalls, WithdrawnTasksGoStraightToFinishAheadOfOthers)
{
    block();
    submitLogged("other");
    under(5, [this] {
        submitLogged("a");
        submitLogged("b");
    });
    queue_->withdraw(5);
    gate_.open();
    EXPECT_EQ(eventsAfterAll(), (std::vector<std::string>{"a withdrawn", "b withdrawn", "other ran"}));
}

TEST_F(TaskQueueCalls, WithdrawalRunsNothingOnTheCallingThread)
{
    block();
    std::atomic<bool> here{false};
    under(5, [&, caller = std::this_thread::get_id()] {
        submit([] { return true; }, [&here, caller](auto&) { here = std::this_thread::get_id() == caller; });
    });
    queue_->withdraw(5);
    EXPECT_EQ(queue_->workOf(5).queued, 1U);
    gate_.open();
    waitForAll();
    EXPECT_FALSE(here);
}

TEST_F(TaskQueueCalls, ARunningTaskIsNotDisturbedButWhatItSubmitsLaterIsWithdrawn)
{
    under(5, [this] {
        submit(
            [this] {
                gate_.pass();
                submitLogged("child");
                return true;
            },
            [this](auto& context) { log_.add(context.ran && context.succeeded ? "parent ran" : "parent lost"); });
    });
    ASSERT_TRUE(eventually([this] { return gate_.waiting() == 1; }));
    queue_->withdraw(5);
    gate_.open();
    EXPECT_EQ(eventsAfterAll(), (std::vector<std::string>{"parent ran", "child withdrawn"}));
}

TEST_F(TaskQueueCalls, LineagePassesThroughGenerationsAndFinishCallbacks)
{
    under(5, [this] {
        submit([] { return true; },
               [this](auto&) {
                   submit([this] {
                       submit([this] {
                           gate_.pass();
                           submitLogged("descendant");
                           return true;
                       });
                       return true;
                   });
               });
    });
    ASSERT_TRUE(eventually([this] { return gate_.waiting() == 1; }));
    EXPECT_EQ(queue_->workOf(5).running, 1U);
    queue_->withdraw(5);
    gate_.open();
    EXPECT_EQ(eventsAfterAll(), std::vector<std::string>{"descendant withdrawn"});
}

TEST_F(TaskQueueCalls, AThreadWorksForNoCallBetweenTasks)
{
    under(5, [this] { submit([] { return true; }); });
    submit([this] {
        log_.add(std::to_string(Kep::currentCall()));
        return true;
    });
    EXPECT_EQ(eventsAfterAll(), std::vector<std::string>{"0"});
}

TEST_F(TaskQueueCalls, TheInnermostOfNestedCallsCounts)
{
    block();
    under(5, [this] {
        submitLogged("outer before");
        under(6, [this] { submitLogged("inner"); });
        submitLogged("outer after");
    });
    queue_->withdraw(6);
    gate_.open();
    EXPECT_EQ(eventsAfterAll(), (std::vector<std::string>{"inner withdrawn", "outer before ran", "outer after ran"}));
}

TEST_F(TaskQueueCalls, WithdrawingTwiceIsWithdrawingOnce)
{
    block();
    under(5, [this] { submitLogged("a"); });
    queue_->withdraw(5);
    queue_->withdraw(5);
    gate_.open();
    EXPECT_EQ(eventsAfterAll(), std::vector<std::string>{"a withdrawn"});
}

TEST_F(TaskQueueCalls, WithdrawingAnUnknownCallDoesNothing)
{
    queue_->withdraw(12345);
    under(5, [this] { submitLogged("a"); });
    EXPECT_EQ(eventsAfterAll(), std::vector<std::string>{"a ran"});
    EXPECT_EQ(queue_->figures().calls, 0U);
}

TEST_F(TaskQueueCalls, ACallStaysWithdrawnWhileItsScopeIsOpenThoughItsTasksHaveEnded)
{
    queue_->openCall(5);
    {
        const CurrentCall scope(5);
        queue_->withdraw(5);
        submitLogged("first");
        waitForAll();
        submitLogged("second");
        waitForAll();
    }
    EXPECT_EQ(queue_->figures().calls, 1U);
    queue_->closeCall(5);
    EXPECT_EQ(queue_->figures().calls, 0U);
    EXPECT_EQ(log_.events(), (std::vector<std::string>{"first withdrawn", "second withdrawn"}));
}

TEST_F(TaskQueueCalls, ACallStaysWithdrawnAfterItsScopeWhileItHasTasks)
{
    under(5, [this] {
        submit([this] {
            gate_.pass();
            submitLogged("child");
            return true;
        });
        queue_->withdraw(5);
    });
    gate_.open();
    waitForAll();
    EXPECT_EQ(queue_->figures().calls, 0U);
}

TEST_F(TaskQueueCalls, ManyCallsLeaveNothingBehind)
{
    for (Kep::Host::CallId call = 1; call <= 1000; ++call) {
        under(call, [this] { submit([] { return true; }); });
        queue_->withdraw(call);
    }
    waitForAll();
    EXPECT_EQ(queue_->figures().calls, 0U);
    EXPECT_EQ(queue_->workOf(500).queued + queue_->workOf(500).running, 0U);
}

TEST_F(TaskQueueCalls, WaitingEndsWithTheLastFinishCallbackOfTheCall)
{
    limit_ = 3;
    block();
    under(5, [this] {
        submit([] { return true; }, [this](auto&) { secondGate_.pass(); });
        submitLogged("early");
    });
    std::thread waiter([this] {
        queue_->waitForWork(5);
        log_.add("waited");
    });
    ASSERT_TRUE(eventually([this] { return secondGate_.waiting() == 1 && log_.events().size() == 1; }));
    EXPECT_EQ(log_.events(), std::vector<std::string>{"early ran"});
    secondGate_.open();
    waiter.join();
    EXPECT_EQ(log_.events(), (std::vector<std::string>{"early ran", "waited"})) << "work of no call is not waited for";
    gate_.open();
}

TEST_F(TaskQueueCalls, WaitingFollowsWhatTasksSubmit)
{
    under(5, [this] {
        submit([this] {
            gate_.pass();
            submitLogged("child");
            return true;
        });
    });
    std::thread opener([this] {
        EXPECT_TRUE(eventually([this] { return gate_.waiting() == 1; }));
        gate_.open();
    });
    queue_->waitForWork(5);
    EXPECT_EQ(log_.events(), std::vector<std::string>{"child ran"});
    opener.join();
}

TEST_F(TaskQueueCalls, WaitingForNoWorkReturnsAtOnce)
{
    block();
    queue_->waitForWork(12345);
    under(5, [this] { queue_->waitForWork(5); });
    gate_.open();
}

TEST_F(TaskQueueCalls, WaitingBringsTheThreadsThatTheQueueCouldNotHave)
{
    threads_.granted = 0;
    makeQueue(1);
    under(5, [this] { submitLogged("a"); });
    std::thread grantor([this, asked = threads_.asked.load()] {
        EXPECT_TRUE(eventually([&] { return threads_.asked > asked; }));
        threads_.granted = 10;
    });
    queue_->waitForWork(5);
    EXPECT_EQ(log_.events(), std::vector<std::string>{"a ran"});
    grantor.join();
}

TEST_F(TaskQueueCalls, ACallHasEndedWhenItHasReturnedAndItsWorkIsDone)
{
    block();
    under(5, [this] {
        EXPECT_FALSE(queue_->hasEnded(5));
        submitLogged("a");
    });
    EXPECT_FALSE(queue_->hasEnded(5));
    gate_.open();
    queue_->waitForWork(5);
    EXPECT_TRUE(queue_->hasEnded(5));
    EXPECT_TRUE(queue_->hasEnded(12345));
}

TEST_F(TaskQueueCalls, WorkIsCountedUntilTheFinishCallbackHasReturned)
{
    under(5, [this] {
        submit([] { return true; }, [this](auto&) { gate_.pass(); });
        submit([] { return true; });
    });
    ASSERT_TRUE(eventually([this] { return gate_.waiting() == 1; }));
    EXPECT_EQ(queue_->workOf(5).running, 1U);
    EXPECT_EQ(queue_->workOf(5).queued, 1U);
    gate_.open();
    waitForAll();
    EXPECT_EQ(queue_->workOf(5).running, 0U);
    EXPECT_EQ(queue_->workOf(5).queued, 0U);
}

} // namespace
