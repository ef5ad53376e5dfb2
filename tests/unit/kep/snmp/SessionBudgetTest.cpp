#include "snmp/SessionBudget.h"

#include "Kep/Snmp/Exception.h"

#include <gtest/gtest.h>

using Kep::Snmp::Exception;
using Kep::Snmp::SessionBudget;
using namespace std::chrono_literals;

TEST(SessionBudgets, Hold4096Requests)
{
    SessionBudget budget;
    for (int i = 0; i < 4096; ++i)
        budget.charge();
    EXPECT_THROW(budget.charge(), Exception);
    EXPECT_THROW(budget.charge(), Exception);
}

TEST(SessionBudgets, HoldSixtySeconds)
{
    SessionBudget budget;
    budget.charge();
    budget.spend(59s + 999ms);
    budget.charge();
    EXPECT_EQ(budget.left(), 1ms);
    budget.spend(1ms);
    EXPECT_THROW(budget.charge(), Exception);
}
