#include "snmp/PacketPacer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using Kep::Snmp::PacketPacer;

namespace {

using Clock = PacketPacer::Clock;

class PacketPaces : public testing::Test {
protected:
    /// How long after `now_` the next packet may go.
    Clock::duration wait(int rate) { return std::max(pacer_.next(rate, now_) - now_, Clock::duration::zero()); }
    void pass(Clock::duration time) { now_ += time; }

    PacketPacer pacer_;
    Clock::time_point now_ = Clock::now();
};

} // namespace

TEST_F(PacketPaces, LetTheFirstPacketGoAtOnce)
{
    EXPECT_EQ(wait(1), 0ns);
}

TEST_F(PacketPaces, SpaceOutTheOthers)
{
    wait(10);
    EXPECT_EQ(wait(10), 100ms);
    EXPECT_EQ(wait(10), 200ms);
    pass(150ms);
    EXPECT_EQ(wait(10), 150ms);
}

TEST_F(PacketPaces, KnowNoLimitAtZero)
{
    for (int packet = 0; packet < 1000; ++packet)
        EXPECT_EQ(wait(0), 0ns);
    wait(1);
    EXPECT_EQ(wait(1), 1s) << "packets without a limit take no tokens";
}

TEST_F(PacketPaces, SaveUpTheTokensOfTenMilliseconds)
{
    wait(1000);
    pass(1h);
    int atOnce = 0;
    while (wait(1000) == 0ns)
        ++atOnce;
    EXPECT_EQ(atOnce, 10);
}

TEST_F(PacketPaces, SaveUpOneTokenAtASlowRate)
{
    wait(2);
    pass(1h);
    EXPECT_EQ(wait(2), 0ns);
    EXPECT_EQ(wait(2), 500ms);
}

TEST_F(PacketPaces, KeepTheRateHoweverLateItsUsersAre)
{
    std::vector<Clock::time_point> times;
    for (int packet = 0; packet < 5000; ++packet) {
        times.push_back(pacer_.next(5000, now_));
        pass(packet % 7 == 0 ? 1ms : 0ms);
    }
    EXPECT_NEAR(std::chrono::duration<double>(times.back() - times.front()).count(), 1.0, 0.02);
}

TEST_F(PacketPaces, GiveEachTokenOnce)
{
    constexpr int threads = 4;
    constexpr int packets = 500;
    std::vector<std::vector<Clock::time_point>> given(threads);
    {
        std::vector<std::jthread> users;
        for (auto& times : given)
            users.emplace_back([this, &times] {
                for (int packet = 0; packet < packets; ++packet)
                    times.push_back(pacer_.next(100, now_));
            });
    }
    std::vector<Clock::time_point> all;
    for (const auto& times : given)
        all.insert(all.end(), times.begin(), times.end());
    std::ranges::sort(all);
    for (std::size_t packet = 1; packet < all.size(); ++packet)
        EXPECT_EQ(all[packet] - all[packet - 1], 10ms);
}
