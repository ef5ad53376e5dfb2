#include "tests/unit/kep/tasks/QueueFixture.h"

#include "base/CurrentCall.h"

namespace {

using namespace Kep::Testing;

class TaskQueueStress : public QueueTest {
protected:
    // Lets `count` threads do `action`, told their number, and waits for them.
    static void onThreads(int count, const std::function<void(int)>& action)
    {
        std::vector<std::thread> threads;
        for (int number = 0; number < count; ++number) {
            threads.emplace_back(action, number);
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }

    std::atomic<int> ran_{0};
    std::atomic<int> finished_{0};
};

TEST_F(TaskQueueStress, AHundredThousandTasksFromManySubmittersEachRunOnce)
{
    constexpr int submitters = 10;
    constexpr int each = 10'000;
    makeQueue(16);
    onThreads(submitters, [this](int) {
        for (int number = 0; number < each; ++number) {
            submit([this] { return ++ran_, true; }, [this](auto&) { ++finished_; });
        }
    });
    waitForAll();
    EXPECT_EQ(ran_, submitters * each);
    EXPECT_EQ(finished_, submitters * each);
}

TEST_F(TaskQueueStress, WithdrawalsAmongSubmissionsFinishEveryTaskOnce)
{
    constexpr int callers = 8;
    constexpr int calls = 50;
    constexpr int each = 20;
    makeQueue(8, std::chrono::milliseconds(1));
    onThreads(callers, [this](int caller) {
        for (int round = 0; round < calls; ++round) {
            const auto call = static_cast<Kep::Host::CallId>(caller * calls + round + 1);
            queue_->openCall(call);
            {
                const Kep::CurrentCall scope(call);
                for (int number = 0; number < each; ++number) {
                    submit([this] { return ++ran_, submit([] { return true; }, [this](auto&) { ++finished_; }), true; },
                           [this](auto&) { ++finished_; });
                }
            }
            queue_->withdraw(call);
            queue_->closeCall(call);
        }
    });
    ASSERT_TRUE(eventually([this] { return queue_->figures().pending == 0; }));
    EXPECT_EQ(finished_, callers * calls * each + ran_);
    EXPECT_EQ(queue_->figures().calls, 0U);
}

TEST_F(TaskQueueStress, ScarceThreadsLoseNoTask)
{
    constexpr int tasks = 5000;
    makeQueue(64, std::chrono::milliseconds(1));
    std::atomic<bool> done{false};
    std::thread scarcity([this, &done] {
        while (!done) {
            threads_.granted = threads_.granted > 0 ? 0 : 1;
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
        threads_.granted = 1000;
    });
    onThreads(4, [this](int) {
        for (int number = 0; number < tasks; ++number) {
            submit([this] { return ++ran_, true; });
        }
    });
    EXPECT_TRUE(eventually([this] { return ran_ == 4 * tasks; }));
    done = true;
    scarcity.join();
}

} // namespace
