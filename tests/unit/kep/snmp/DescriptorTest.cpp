#include "Sessions.h"

#include "FullDescriptors.h"
#include "snmp/DescriptorLine.h"

#include <future>

using namespace std::chrono_literals;
using Kep::Snmp::DescriptorLine;

namespace {

class Descriptors : public testing::Test {
protected:
    // Sanitizers need descriptors of their own when they see a type for the first time.
    Descriptors()
    {
        const auto first = newSession(communityProfile(1, 161));
        std::async(std::launch::async, [&] { first->open("127.0.0.1"); }).get();
        auto opened = std::async(std::launch::async, [] {});
        expectOpened(opened);
    }

    // Opens a session on a thread of its own.
    std::future<void> opening()
    {
        return std::async(std::launch::async, [this] { session_->open("127.0.0.1"); });
    }

    static bool waits(std::future<void>& opened) { return opened.wait_for(200ms) == std::future_status::timeout; }

    static void expectOpened(std::future<void>& opened)
    {
        ASSERT_EQ(opened.wait_for(30s), std::future_status::ready);
        EXPECT_NO_THROW(opened.get());
    }

    const std::shared_ptr<Kep::Snmp::Session> session_ = newSession(communityProfile(1, 161));
};

} // namespace

TEST_F(Descriptors, AreWaitedForWhenNoneIsFree)
{
    FullDescriptors full;
    auto opened = opening();
    const bool waited = waits(opened);
    full.freeOne();
    expectOpened(opened);
    EXPECT_TRUE(waited);
}

TEST_F(Descriptors, ArePassedOnByASessionThatEnds)
{
    auto other = openSession(communityProfile(1, 161));
    const FullDescriptors full;
    auto opened = opening();
    const bool waited = waits(opened);
    other.reset();
    expectOpened(opened);
    EXPECT_TRUE(waited);
}

TEST_F(Descriptors, ReachAllWhoWait)
{
    std::atomic<int> free = 0;
    DescriptorLine line;
    const auto tryTake = [&free] {
        int seen = free;
        while (seen > 0 && !free.compare_exchange_weak(seen, seen - 1)) {
        }
        return seen > 0;
    };
    std::vector<std::future<void>> waiters;
    for (int i = 0; i < 50; ++i)
        waiters.push_back(std::async(std::launch::async, [&] { line.open(tryTake); }));
    for (int i = 0; i < 50; ++i) {
        ++free;
        line.freed();
    }
    for (auto& waiter : waiters)
        expectOpened(waiter);
    EXPECT_EQ(free, 0);
}

TEST_F(Descriptors, AreNotWaitedForWhenTheFailureIsAnother)
{
    DescriptorLine line;
    EXPECT_THROW(line.open([]() -> bool { throw std::runtime_error("no such protocol"); }), std::runtime_error);
}
