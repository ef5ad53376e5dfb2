#include "tasks/Backlog.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

constexpr auto largestId = std::numeric_limits<std::uint32_t>::max();

class BacklogOrder : public testing::Test {
protected:
    std::uint32_t add(Kep::Host::CallId call = 0) { return backlog_.add(nullptr, nullptr, call); }

    // Takes and removes everything, in order.
    std::vector<std::uint32_t> drain()
    {
        std::vector<std::uint32_t> ids;
        while (backlog_.queued() > 0) {
            auto& entry = backlog_.take();
            ids.push_back(entry.id);
            backlog_.remove(entry);
        }
        return ids;
    }

    Kep::Backlog backlog_;
};

TEST_F(BacklogOrder, FirstInIsFirstOut)
{
    const auto first = add();
    const auto second = add(7);
    const auto third = add();
    EXPECT_EQ(drain(), (std::vector{first, second, third}));
}

TEST_F(BacklogOrder, IdsBeginAnewAfterTheLargestAndAreNeverZero)
{
    backlog_.setLastId(largestId - 1);
    EXPECT_EQ(add(), largestId);
    EXPECT_EQ(add(), 1U);
}

TEST_F(BacklogOrder, IdsOfQueuedAndOfTakenTasksArePassedOver)
{
    add();
    add();
    add();
    backlog_.take();
    backlog_.setLastId(largestId);
    EXPECT_EQ(add(), 4U);
}

TEST_F(BacklogOrder, TheIdOfARemovedTaskIsUsedAgain)
{
    add();
    add();
    backlog_.remove(backlog_.take());
    backlog_.setLastId(0);
    EXPECT_EQ(add(), 1U);
    EXPECT_EQ(add(), 3U);
}

TEST_F(BacklogOrder, TasksOfAWithdrawnCallComeFirstInTheirOrder)
{
    const auto other = add();
    const auto one = add(7);
    const auto two = add(7);
    const auto foreign = add(8);
    backlog_.withdraw(7);
    const auto late = add(7);
    EXPECT_EQ(drain(), (std::vector{one, two, late, other, foreign}));
}

TEST_F(BacklogOrder, OnlyTasksOfAWithdrawnCallAreMarked)
{
    add(7);
    add(8);
    backlog_.withdraw(7);
    EXPECT_TRUE(backlog_.take().withdrawn);
    EXPECT_FALSE(backlog_.take().withdrawn);
}

TEST_F(BacklogOrder, ATaskTakenBeforeTheWithdrawalIsNotMarked)
{
    add(7);
    const auto& taken = backlog_.take();
    backlog_.withdraw(7);
    EXPECT_FALSE(taken.withdrawn);
}

TEST_F(BacklogOrder, TwoWithdrawnCallsAreServedInTheOrderOfTheirWithdrawal)
{
    const auto second = add(7);
    const auto first = add(8);
    backlog_.withdraw(8);
    backlog_.withdraw(7);
    backlog_.withdraw(8);
    EXPECT_EQ(drain(), (std::vector{first, second}));
}

TEST_F(BacklogOrder, TheWorkOfACallIsCounted)
{
    add(7);
    add(7);
    add(8);
    auto& taken = backlog_.take();
    EXPECT_EQ(backlog_.workOf(7).queued, 1U);
    EXPECT_EQ(backlog_.workOf(7).running, 1U);
    backlog_.remove(taken);
    EXPECT_EQ(backlog_.workOf(7).running, 0U);
    EXPECT_EQ(backlog_.workOf(8).queued, 1U);
    EXPECT_EQ(backlog_.workOf(99).queued, 0U);
}

TEST_F(BacklogOrder, ACallIsForgottenWithItsLastTask)
{
    add(7);
    add(7);
    backlog_.withdraw(7);
    backlog_.remove(backlog_.take());
    EXPECT_EQ(backlog_.calls(), 1U);
    backlog_.remove(backlog_.take());
    EXPECT_EQ(backlog_.calls(), 0U);
}

TEST_F(BacklogOrder, AnOpenCallStaysWithdrawnWithoutTasks)
{
    backlog_.openCall(7);
    add(7);
    backlog_.withdraw(7);
    drain();
    add(7);
    EXPECT_TRUE(backlog_.take().withdrawn);
}

TEST_F(BacklogOrder, AnOpenCallCanBeWithdrawnBeforeItsFirstTask)
{
    backlog_.openCall(7);
    backlog_.withdraw(7);
    add(7);
    EXPECT_TRUE(backlog_.take().withdrawn);
}

TEST_F(BacklogOrder, AClosedCallIsForgottenOnceItHasNoTasks)
{
    backlog_.openCall(7);
    backlog_.openCall(8);
    add(8);
    backlog_.closeCall(7);
    backlog_.closeCall(8);
    EXPECT_EQ(backlog_.calls(), 1U);
    drain();
    EXPECT_EQ(backlog_.calls(), 0U);
}

TEST_F(BacklogOrder, WithdrawingAnUnknownCallLeavesNothingBehind)
{
    backlog_.withdraw(99);
    backlog_.closeCall(99);
    EXPECT_EQ(backlog_.calls(), 0U);
}

} // namespace
