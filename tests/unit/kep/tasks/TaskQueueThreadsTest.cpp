#include "tests/unit/kep/tasks/QueueFixture.h"

namespace {

using namespace Kep::Testing;
using namespace std::chrono_literals;

class TaskQueueThreads : public QueueTest {
protected:
    std::size_t workers() { return queue_->figures().workers; }

    // Submits tasks that each wait at `gate`.
    void submitBlocked(int count, Gate& gate)
    {
        for (int number = 0; number < count; ++number) {
            submit([&gate] { return gate.pass(), true; });
        }
    }

    bool allWait(Gate& gate, int count)
    {
        return eventually([&] { return gate.waiting() == count; });
    }
};

TEST_F(TaskQueueThreads, AsManyAsThereIsWorkForUpToTheLimit)
{
    makeQueue(20);
    submitBlocked(30, gate_);
    ASSERT_TRUE(allWait(gate_, 20));
    EXPECT_EQ(workers(), 20U);
    EXPECT_EQ(queue_->figures().queued, 10U);
    gate_.open();
    waitForAll();
    EXPECT_EQ(workers(), 20U);
}

TEST_F(TaskQueueThreads, NeverMoreTasksAtOnceThanTheLimit)
{
    makeQueue(7);
    std::atomic<int> running{0};
    std::atomic<int> most{0};
    for (int number = 0; number < 2000; ++number) {
        submit([&] {
            const int now = ++running;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            std::this_thread::yield();
            --running;
            return true;
        });
    }
    waitForAll();
    EXPECT_LE(most, 7);
    EXPECT_LE(workers(), 7U);
}

TEST_F(TaskQueueThreads, NoneBeforeThereIsWorkAndAnIdleOneIsUsedAgain)
{
    makeQueue(10, 60s);
    EXPECT_EQ(workers(), 0U);
    for (int round = 0; round < 20; ++round) {
        submit([] { return true; });
        waitForAll();
        ASSERT_TRUE(eventually([this] { return queue_->figures().idle == 1; }));
    }
    EXPECT_EQ(workers(), 1U);
    EXPECT_EQ(threads_.asked, 2) << "the thread that makes others, and one worker";
}

TEST_F(TaskQueueThreads, IdleOnesEndAndNewOnesAreMadeForNewWork)
{
    makeQueue(10, 20ms);
    submitBlocked(10, gate_);
    ASSERT_TRUE(allWait(gate_, 10));
    gate_.open();
    ASSERT_TRUE(eventually([this] { return workers() == 0; }));
    submitLogged("later");
    waitForAll();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"later ran"});
}

TEST_F(TaskQueueThreads, ALoweredLimitHoldsForTheNextTasks)
{
    makeQueue(8);
    submitBlocked(8, gate_);
    ASSERT_TRUE(allWait(gate_, 8));
    limit_ = 2;
    submitBlocked(5, secondGate_);
    gate_.open();
    ASSERT_TRUE(allWait(secondGate_, 2));
    ASSERT_TRUE(eventually([this] { return queue_->figures().idle == 6; }));
    EXPECT_EQ(queue_->figures().queued, 3U);
    secondGate_.open();
}

TEST_F(TaskQueueThreads, ALimitLoweredWhileAllAreIdleStillLetsWorkBeDone)
{
    makeQueue(8);
    submitBlocked(8, gate_);
    ASSERT_TRUE(allWait(gate_, 8));
    gate_.open();
    ASSERT_TRUE(eventually([this] { return queue_->figures().idle == 8; }));
    limit_ = 1;
    submitLogged("a");
    submitLogged("b");
    waitForAll();
    EXPECT_EQ(log_.events(), (std::vector<std::string>{"a ran", "b ran"}));
}

TEST_F(TaskQueueThreads, ARaisedLimitIsUsedForWhatIsQueuedAlready)
{
    makeQueue(1);
    submitBlocked(9, gate_);
    ASSERT_TRUE(allWait(gate_, 1));
    limit_ = 10;
    submitBlocked(1, gate_);
    EXPECT_TRUE(allWait(gate_, 10));
    gate_.open();
}

TEST_F(TaskQueueThreads, ALimitOfZeroCountsAsOne)
{
    makeQueue(0);
    submitLogged("a");
    waitForAll();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"a ran"});
}

TEST_F(TaskQueueThreads, WhenNoMoreAreToBeHadTheOthersDoTheWork)
{
    threads_.granted = 4; // the one that makes others, and three workers
    makeQueue(100);
    for (int number = 0; number < 500; ++number) {
        submitLogged("task");
    }
    waitForAll();
    EXPECT_EQ(log_.events().size(), 500U);
    EXPECT_LE(workers(), 3U);
}

TEST_F(TaskQueueThreads, TheQueueGrowsOnceTheyAreToBeHadAgain)
{
    threads_.granted = 3;
    makeQueue(10);
    submitBlocked(10, gate_);
    ASSERT_TRUE(allWait(gate_, 2));
    threads_.granted = 100;
    EXPECT_TRUE(allWait(gate_, 10));
    gate_.open();
}

TEST_F(TaskQueueThreads, WithoutAnyWorkerTheTasksAreServedOneAtATime)
{
    threads_.granted = 1;
    makeQueue(100);
    const auto submitter = std::this_thread::get_id();
    std::atomic<bool> here{false};
    for (int number = 0; number < 100; ++number) {
        submit([&] { return here = here || std::this_thread::get_id() == submitter, true; },
               [this](auto&) { log_.add("served"); });
    }
    waitForAll();
    EXPECT_EQ(log_.events().size(), 100U);
    EXPECT_FALSE(here);
    EXPECT_EQ(workers(), 0U);
}

TEST_F(TaskQueueThreads, WithoutAnyThreadTasksStayQueuedUntilThereIsOne)
{
    threads_.granted = 0;
    makeQueue(10);
    submitLogged("a");
    submitLogged("b");
    EXPECT_EQ(queue_->figures().queued, 2U);
    threads_.granted = 100;
    submitLogged("c");
    waitForAll();
    EXPECT_EQ(log_.events().size(), 3U);
}

TEST_F(TaskQueueThreads, AskingForTheWorkOfACallAlsoTriesAgain)
{
    threads_.granted = 0;
    makeQueue(10);
    submitLogged("a");
    threads_.granted = 100;
    queue_->workOf(1);
    waitForAll();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"a ran"});
}

TEST_F(TaskQueueThreads, FailedAttemptsAreSpacedOut)
{
    threads_.granted = 2;
    makeQueue(1000);
    block();
    for (int number = 0; number < 900; ++number) {
        submit([] { return true; });
    }
    EXPECT_LT(threads_.asked, 100);
    gate_.open();
}

TEST_F(TaskQueueThreads, AnEndedQueueHasEndedItsThreads)
{
    makeQueue(10, 60s);
    submit([] { return true; });
    waitForAll();
    queue_.reset();
}

} // namespace
