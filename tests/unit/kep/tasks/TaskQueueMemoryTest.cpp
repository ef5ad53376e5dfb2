#include "tests/unit/kep/tasks/QueueFixture.h"

#include "base/CurrentCall.h"
#include "tests/unit/kep/tasks/FailingMemory.h"

#include <new>

namespace {

using namespace Kep::Testing;

class TaskQueueMemory : public QueueTest {
protected:
    // Whether a submission succeeds when the allocation after `allocations` others fails.
    bool submitWith(int allocations, const std::shared_ptr<Kep::Tasks::Task>& what)
    {
        const Kep::CurrentCall scope(5);
        failAllocationsAfter(allocations);
        try {
            queue_->submit(what, account_);
            failAllocationsAfter(-1);
            return true;
        } catch (const std::bad_alloc&) {
            failAllocationsAfter(-1);
            return false;
        }
    }
};

TEST_F(TaskQueueMemory, ASubmissionThatThrowsHasQueuedNothing)
{
    makeQueue(1);
    const auto what = task([] { return true; }, [this](auto&) { log_.add("served"); });
    int allocations = 0;
    while (!submitWith(allocations, what)) {
        ++allocations;
        EXPECT_EQ(queue_->figures().pending, 0U);
        EXPECT_EQ(queue_->figures().calls, 0U);
        EXPECT_EQ(what.use_count(), 1);
        account_->close(); // would wait for a task that was counted
        account_->reopen();
        ASSERT_LT(allocations, 100);
    }
    waitForAll();
    EXPECT_GT(allocations, 0);
    EXPECT_EQ(log_.events(), std::vector<std::string>{"served"});
}

TEST_F(TaskQueueMemory, ACallForWhichThereIsNoneIsKnownFromItsFirstTaskOn)
{
    makeQueue(1);
    failAllocationsAfter(0);
    queue_->openCall(5);
    failAllocationsAfter(-1);
    EXPECT_EQ(queue_->figures().calls, 0U);
    block();
    {
        const Kep::CurrentCall scope(5);
        submitLogged("task");
    }
    queue_->withdraw(5);
    queue_->closeCall(5);
    gate_.open();
    waitForAll();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"task withdrawn"});
    EXPECT_EQ(queue_->figures().calls, 0U);
}

} // namespace
