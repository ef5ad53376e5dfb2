#include "Sessions.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>
#include <vector>

using namespace Ber;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

class Pacing : public AgentTest {
protected:
    void agentAnswers() { agentGives(sysDescr, octets("well")); }

    /// How long `count` requests take, one after another on one session.
    Clock::duration timeOf(int count)
    {
        const auto begin = Clock::now();
        for (int request = 0; request < count; ++request)
            EXPECT_EQ(getText(), "well");
        return Clock::now() - begin;
    }
};

} // namespace

TEST_F(Pacing, BoundsThePacketsOfASecond)
{
    agentAnswers();
    const ChosenSettings paced(100ms, 0, 50);
    EXPECT_GE(timeOf(11), 200ms) << "the first at once, the others 20 ms apart";
}

TEST_F(Pacing, CountsTheFollowingTriesToo)
{
    agentSays([](const Message&) { return Answers(); });
    const ChosenSettings paced(1ms, 4, 50);
    const auto begin = Clock::now();
    EXPECT_THAT(problemOfGet(), testing::HasSubstr("no answer in 5 tries"));
    EXPECT_GE(Clock::now() - begin, 75ms);
}

TEST_F(Pacing, TakesNothingFromTheTimeOut)
{
    agentSays([](const Message& request) {
        std::this_thread::sleep_for(10ms);
        return Answers{replyTo(request, {binding(sysDescr, octets("well"))}).encoded()};
    });
    session();
    const ChosenSettings paced(100ms, 0, 10);
    std::vector<std::jthread> probes;
    for (int probe = 0; probe < 6; ++probe)
        probes.emplace_back([profile = communityProfile(1, agent_->port())] {
            Kep::Variant value;
            EXPECT_EQ(problemOf([&] { openSession(profile)->get(sysDescr, value); }), "");
            EXPECT_EQ(std::string(value), "well");
        });
}
