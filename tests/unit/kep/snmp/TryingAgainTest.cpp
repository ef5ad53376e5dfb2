#include "Sessions.h"

#include <gmock/gmock.h>

using namespace Ber;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

class TryingAgain : public AgentTest {
protected:
    static Message numbered(const Message& request, std::size_t number)
    {
        return replyTo(request, {binding(sysDescr, octets(std::to_string(number)))});
    }
    void agentIsSilent()
    {
        agentSays([](const Message&) { return Answers(); });
    }
};

} // namespace

TEST_F(TryingAgain, SendsTheSameBytes)
{
    agentIsSilent();
    EXPECT_THAT(problemOfGet(), HasSubstr("no answer in 2 tries"));
    const auto requests = agent_->requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0], requests[1]);
}

TEST_F(TryingAgain, IsDoneAsOftenAsTheSettingsSay)
{
    agentIsSilent();
    const ChosenSettings never(20ms, 0);
    EXPECT_THAT(problemOfGet(), HasSubstr("no answer in 1 try of 20 ms"));
    EXPECT_EQ(requestsSeen(), 1U);
    const ChosenSettings thrice(20ms, 3);
    EXPECT_THAT(problemOfGet(), HasSubstr("no answer in 4 tries of 20 ms"));
    EXPECT_EQ(requestsSeen(), 5U);
}

TEST_F(TryingAgain, BringsTheAnswer)
{
    agentSays([](const Message& request, std::size_t number) {
        return number == 1 ? Answers() : Answers{numbered(request, number).encoded()};
    });
    EXPECT_EQ(getText(), "2");
}

TEST_F(TryingAgain, AcceptsALateAnswerToTheFirstTry)
{
    agentSays([](const Message& request, std::size_t number) {
        return number == 1 ? Answers() : Answers{numbered(request, 1).encoded(), numbered(request, 2).encoded()};
    });
    EXPECT_EQ(getText(), "1");
}

TEST_F(TryingAgain, WorksForTheNextRequestAndIgnoresLateAnswersToTheOldOne)
{
    Message old;
    agentSays([&old](const Message& request, std::size_t number) {
        if (number <= 2) {
            old = numbered(request, 0);
            return Answers();
        }
        return Answers{old.encoded(), numbered(request, number).encoded()};
    });
    EXPECT_THAT(problemOfGet(), HasSubstr("no answer"));
    EXPECT_EQ(getText(), "3");
    EXPECT_EQ(getText(), "4");
}

TEST_F(TryingAgain, IgnoresAnAnswerThatComesTwice)
{
    agentSays([](const Message& request, std::size_t number) {
        const Bytes answer = numbered(request, number).encoded();
        return Answers{answer, answer};
    });
    EXPECT_EQ(getText(), "1");
    EXPECT_EQ(getText(), "2");
    EXPECT_EQ(getText(), "3");
}

TEST_F(TryingAgain, EndsAlthoughTheAgentNeverStopsTalking)
{
    agentSays([](const Message&) { return Answers(2000, Bytes("nonsense")); });
    const ChosenSettings brief(20ms, 1);
    EXPECT_THAT(problemOfGet(), HasSubstr("no readable answer in 2 tries"));
}
