#include "host/CallThreads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

namespace Host {
namespace {

using namespace std::chrono_literals;

TEST(CallThreads, RunEveryCall)
{
    std::atomic<int> count{0};
    {
        CallThreads threads(4);
        for (int i = 0; i < 1000; ++i)
            threads.run([&] { ++count; });
    }
    EXPECT_EQ(count, 1000);
}

TEST(CallThreads, ABlockedCallHoldsUpNoOther)
{
    std::promise<void> release;
    const auto released = release.get_future().share();
    std::promise<void> other;
    CallThreads threads(2);
    threads.run([&] { released.wait(); });
    threads.run([&] { other.set_value(); });
    EXPECT_EQ(other.get_future().wait_for(30s), std::future_status::ready);
    release.set_value();
}

TEST(CallThreads, NeverRunMoreThanTheLimit)
{
    std::atomic<int> running{0};
    std::atomic<int> most{0};
    {
        CallThreads threads(3);
        for (int i = 0; i < 200; ++i)
            threads.run([&] {
                const int now = ++running;
                int seen = most;
                while (now > seen && !most.compare_exchange_weak(seen, now)) {
                }
                std::this_thread::yield();
                --running;
            });
    }
    EXPECT_LE(most, 3);
}

TEST(CallThreads, IdleMeansThatEveryCallHasEnded)
{
    std::promise<void> release;
    const auto released = release.get_future().share();
    CallThreads threads(2);
    EXPECT_TRUE(threads.waitIdle(0ms));
    threads.run([&] { released.wait(); });
    EXPECT_FALSE(threads.waitIdle(10ms));
    release.set_value();
    EXPECT_TRUE(threads.waitIdle(30s));
}

} // namespace
} // namespace Host
