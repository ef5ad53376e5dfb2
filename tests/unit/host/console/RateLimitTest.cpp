#include "host/console/RateLimit.h"

#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using namespace std::chrono_literals;

class RateLimits : public testing::Test {
protected:
    RateLimit limit{10, 3}; // one in 100 ms

    int allowed(const std::string& client, int tries)
    {
        int count = 0;
        for (int i = 0; i < tries; ++i)
            count += limit.allow(client, now) ? 1 : 0;
        return count;
    }

    RateLimit::Time now{1h};
};

TEST_F(RateLimits, AllowABurstAndThenTheRate)
{
    EXPECT_EQ(allowed("a", 5), 3);
    now += 100ms;
    EXPECT_EQ(allowed("a", 5), 1);
    now += 200ms;
    EXPECT_EQ(allowed("a", 5), 2);
}

TEST_F(RateLimits, RefusedRequestsCostNothing)
{
    allowed("a", 1000);
    now += 100ms;
    EXPECT_EQ(allowed("a", 1), 1);
}

TEST_F(RateLimits, APauseFillsTheBucketAndNoMore)
{
    allowed("a", 3);
    now += 1h;
    EXPECT_EQ(allowed("a", 10), 3);
}

TEST_F(RateLimits, ClientsDoNotHinderEachOther)
{
    allowed("a", 100);
    EXPECT_EQ(allowed("b", 3), 3);
}

TEST_F(RateLimits, ClientsThatPauseAreForgotten)
{
    for (std::size_t i = 0; i < RateLimit::MostClients; ++i)
        limit.allow(std::to_string(i), now);
    EXPECT_EQ(limit.size(), RateLimit::MostClients);
    now += 1s;
    limit.allow("one more", now);
    EXPECT_EQ(limit.size(), 1U);
}

TEST_F(RateLimits, AnyNumberOfClientsTakesABoundedPlace)
{
    for (int i = 0; i < 20000; ++i)
        limit.allow(std::to_string(i), now);
    EXPECT_LE(limit.size(), RateLimit::MostClients);
}

} // namespace
} // namespace Host
