/// A task queue of its own for each test, on threads that can be refused on command.
#pragma once

#include "Kep/Mutex.h"
#include "tasks/TaskQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Kep::Testing {

/// Whether `condition` comes to hold; the wait is bounded against hangs only.
inline bool eventually(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Holds threads until it is opened.
class Gate {
public:
    void pass()
    {
        MutexLock lock(mutex_);
        ++waiting_;
        while (!open_) {
            lock.wait(opened_);
        }
        --waiting_;
    }
    void open()
    {
        const MutexLock lock(mutex_);
        open_ = true;
        opened_.notify_all();
    }
    int waiting()
    {
        const MutexLock lock(mutex_);
        return waiting_;
    }

private:
    Mutex mutex_;
    std::condition_variable opened_;
    bool open_ KEP_GUARDED_BY(mutex_) = false;
    int waiting_ KEP_GUARDED_BY(mutex_) = 0;
};

/// What happened, in order.
class Log {
public:
    void add(std::string event)
    {
        const MutexLock lock(mutex_);
        events_.push_back(std::move(event));
    }
    std::vector<std::string> events()
    {
        const MutexLock lock(mutex_);
        return events_;
    }

private:
    Mutex mutex_;
    std::vector<std::string> events_ KEP_GUARDED_BY(mutex_);
};

/// Threads of the system, unless refused.
class RefusableThreads final : public ITaskThreads {
public:
    bool start(std::function<void()> body) noexcept override
    {
        ++asked;
        if (granted-- <= 0) {
            ++granted;
            return false;
        }
        return system_.start(std::move(body));
    }

    std::atomic<int> granted{1'000'000}; ///< how many more threads there are
    std::atomic<int> asked{0};

private:
    SystemTaskThreads system_;
};

class QueueTest : public testing::Test {
protected:
    ~QueueTest() override
    {
        if (queue_) {
            waitForAll();
        }
    }

    void makeQueue(std::size_t limit, std::chrono::milliseconds idleTime = std::chrono::milliseconds(2000))
    {
        limit_ = limit;
        queue_.emplace(threads_, TaskQueue::Options{.limit = [this] { return limit_.load(); }, .idleTime = idleTime});
    }

    using Run = std::function<bool()>;
    using Finish = std::function<void(Tasks::FinishContext&)>;

    std::uint32_t submit(
        Run run, Finish finish = [](Tasks::FinishContext&) {})
    {
        return queue_->submit(task(std::move(run), std::move(finish)), account_);
    }

    static std::shared_ptr<Tasks::Task> task(Run run, Finish finish)
    {
        return std::make_shared<Tasks::Task>(
            "a task", [work = std::move(run)](Tasks::RunContext&) { return work(); },
            [end = std::move(finish)](Tasks::FinishContext& context) { end(context); });
    }

    /// Submits a task that waits at the gate and returns when it does.
    void block()
    {
        submit([this] { return gate_.pass(), true; });
        ASSERT_TRUE(eventually([this] { return gate_.waiting() == 1; }));
    }

    /// Submits a task that logs how it was ended, `name` with "ran" or "withdrawn".
    std::uint32_t submitLogged(const std::string& name)
    {
        return submit(
            [] { return true; },
            [this, name](Tasks::FinishContext& context) { log_.add(name + (context.ran ? " ran" : " withdrawn")); });
    }

    /// Waits until all tasks have ended and the queue has forgotten them.
    void waitForAll()
    {
        EXPECT_TRUE(eventually([this] { return queue_->figures().pending == 0; }));
    }

    RefusableThreads threads_;
    std::atomic<std::size_t> limit_{1};
    std::shared_ptr<Platform::CallbacksService> account_ = std::make_shared<Platform::CallbacksService>();
    Log log_;
    Gate gate_;
    Gate secondGate_;
    std::optional<TaskQueue> queue_;
};

} // namespace Kep::Testing
