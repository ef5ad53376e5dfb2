#include "tests/unit/kep/tasks/QueueFixture.h"

#include <set>
#include <stdexcept>

namespace {

using namespace Kep::Testing;
using Kep::Tasks::FinishContext;

class TaskQueueRules : public QueueTest {
protected:
    void SetUp() override { makeQueue(1); }
};

TEST_F(TaskQueueRules, TasksAreServedInTheOrderOfTheirSubmission)
{
    block();
    std::vector<std::string> expected;
    for (int number = 0; number < 100; ++number) {
        submitLogged(std::to_string(number));
        expected.push_back(std::to_string(number) + " ran");
    }
    gate_.open();
    waitForAll();
    EXPECT_EQ(log_.events(), expected);
}

TEST_F(TaskQueueRules, CallbacksNeverRunOnTheSubmittingThread)
{
    const auto submitter = std::this_thread::get_id();
    std::atomic<int> here{0};
    const auto look = [&] { here += std::this_thread::get_id() == submitter ? 1 : 0; };
    for (int number = 0; number < 100; ++number) {
        submit([look] { return look(), true; }, [look](FinishContext&) { look(); });
    }
    waitForAll();
    EXPECT_EQ(here, 0);
}

TEST_F(TaskQueueRules, SubmittingUnderALockThatTheFinishCallbackTakesDoesNotBlock)
{
    Kep::Mutex mutex;
    std::set<std::uint32_t> pending;
    bool found = true;
    for (int number = 0; number < 200; ++number) {
        const Kep::MutexLock lock(mutex);
        pending.insert(submit([] { return true; },
                              [&](FinishContext& context) {
                                  const Kep::MutexLock inner(mutex);
                                  found = pending.erase(context.taskId) == 1 && found;
                              }));
    }
    waitForAll();
    EXPECT_TRUE(found);
    EXPECT_TRUE(pending.empty());
}

TEST_F(TaskQueueRules, SubmitDoesNotWaitForCapacity)
{
    block();
    for (int number = 0; number < 10'000; ++number) {
        submit([] { return true; });
    }
    EXPECT_EQ(queue_->figures().queued, 10'000U);
    gate_.open();
}

TEST_F(TaskQueueRules, BothCallbacksGetTheIdThatSubmitReturned)
{
    std::atomic<std::uint32_t> run{0};
    std::atomic<std::uint32_t> finish{0};
    const auto what = std::make_shared<Kep::Tasks::Task>(
        "a task", [&](Kep::Tasks::RunContext& context) { return run = context.taskId, true; },
        [&](FinishContext& context) { finish = context.taskId; });
    const auto id = queue_->submit(what, account_);
    waitForAll();
    EXPECT_NE(id, 0U);
    EXPECT_EQ(run, id);
    EXPECT_EQ(finish, id);
}

TEST_F(TaskQueueRules, TheFinishCallbackIsToldHowTheTaskEnded)
{
    const auto logged = [this](FinishContext& context) {
        log_.add(std::string(context.ran ? "ran" : "withdrawn") + (context.succeeded ? " well" : " badly"));
    };
    submit([] { return true; }, logged);
    submit([] { return false; }, logged);
    submit([]() -> bool { throw std::runtime_error("broken"); }, logged);
    waitForAll();
    EXPECT_EQ(log_.events(), (std::vector<std::string>{"ran well", "ran badly", "ran badly"}));
}

TEST_F(TaskQueueRules, ExceptionsOfAnyTypeAreCountedAndTheThreadGoesOn)
{
    submit([]() -> bool { throw 42; }, [](FinishContext&) { throw "text"; });
    submit([]() -> bool { throw std::runtime_error("broken"); });
    submit([] { return true; }, [](FinishContext&) { throw 42; });
    submitLogged("after");
    waitForAll();
    EXPECT_EQ(log_.events(), std::vector<std::string>{"after ran"});
    EXPECT_EQ(queue_->figures().thrown, 4U);
    EXPECT_EQ(threads_.asked, 2) << "the thread that makes others, and one worker";
}

TEST_F(TaskQueueRules, NoLockIsHeldInTheCallbacksNorWhenTheTaskIsDestroyed)
{
    struct SubmitsWhenDestroyed {
        std::function<void()> action;
        ~SubmitsWhenDestroyed() { action(); }
    };
    const auto useQueue = [this] {
        submitLogged("inner");
        queue_->figures();
        queue_->withdraw(1);
    };
    block();
    {
        auto held = std::make_shared<SubmitsWhenDestroyed>(useQueue);
        submit([useQueue, held] { return useQueue(), true; }, [useQueue](FinishContext&) { useQueue(); });
    }
    gate_.open(); // only now may the task end: the submitter has let go of it
    ASSERT_TRUE(eventually([this] { return log_.events().size() == 3; }));
}

TEST_F(TaskQueueRules, TheQueueLetsGoOfATaskThatHasEnded)
{
    const auto what = task([] { return true; }, [](FinishContext&) {});
    queue_->submit(what, account_);
    waitForAll();
    EXPECT_EQ(what.use_count(), 1);
}

TEST_F(TaskQueueRules, IdsOfPendingTasksDiffer)
{
    block();
    std::set<std::uint32_t> ids;
    for (int number = 0; number < 1000; ++number) {
        ids.insert(submit([] { return true; }));
    }
    EXPECT_EQ(ids.size(), 1000U);
    EXPECT_EQ(ids.count(0), 0U);
    gate_.open();
}

} // namespace
