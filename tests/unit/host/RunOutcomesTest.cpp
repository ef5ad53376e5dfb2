#include "host/RunOutcomes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace Host {
namespace {

using Kep::Host::Outcome;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t address(std::uint32_t third, std::uint32_t last)
{
    return (10U << 24U) + (third << 8U) + last;
}

class OutcomesOfARun : public testing::Test {
protected:
    void see(std::uint32_t at, Outcome outcome, const std::string& problem = {})
    {
        outcomes.observe({.call = 1, .address = at, .outcome = outcome, .problem = problem});
    }

    std::vector<std::string> listed(std::uint32_t from = 0, std::size_t most = 1000) const
    {
        std::vector<std::string> texts;
        for (const auto& entry : outcomes.list(from, most, [](AddressOutcome) { return true; }))
            texts.push_back(addressText(entry.address) + ' ' + std::string(nameOf(entry.outcome)) +
                            (entry.problem.empty() ? "" : ' ' + entry.problem));
        return texts;
    }

    std::uint64_t count(AddressOutcome outcome) const { return outcomes.counts()[outcome]; }

    /// 10.0.0.0/24 and 10.0.2.10-10.0.3.20
    RunOutcomes outcomes{AddressRanges{{address(0, 0), address(0, 255)}, {address(2, 10), address(3, 20)}}};
};

TEST_F(OutcomesOfARun, BeginWithNothingProbed)
{
    EXPECT_EQ(count(AddressOutcome::NotProbed), 254U + 245U + 20U);
    EXPECT_EQ(outcomes.counts().total(), 254U + 245U + 20U);
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(OutcomesOfARun, AreListedByAscendingAddress)
{
    see(address(3, 1), Outcome::Answered);
    see(address(0, 200), Outcome::Unreachable);
    see(address(0, 9), Outcome::Silent);
    see(address(2, 10), Outcome::PortClosed);
    see(address(2, 11), Outcome::WrongCredentials, "unknown user");
    see(address(2, 12), Outcome::Failed, "error status 5");
    outcomes.addPrinter("10.0.3.2");
    EXPECT_THAT(listed(), ElementsAre("10.0.0.9 silent", "10.0.0.200 unreachable", "10.0.2.10 portClosed",
                                      "10.0.2.11 wrongCredentials unknown user", "10.0.2.12 failed error status 5",
                                      "10.0.3.1 notPrinter", "10.0.3.2 printer"));
    EXPECT_EQ(outcomes.counts().total(), 254U + 245U + 20U);
    EXPECT_EQ(count(AddressOutcome::NotProbed), 254U + 245U + 20U - 7U);
}

TEST_F(OutcomesOfARun, OfSeveralCredentialsTheBestCounts)
{
    const std::vector<Outcome> ascending = {Outcome::Silent,           Outcome::Unreachable, Outcome::PortClosed,
                                            Outcome::WrongCredentials, Outcome::Failed,      Outcome::Answered};
    for (std::uint32_t i = 0; i < ascending.size(); ++i)
        for (std::uint32_t j = 0; j < ascending.size(); ++j) {
            RunOutcomes both{AddressRanges{{address(0, 0), address(0, 255)}}};
            both.observe({.call = 1, .address = address(0, 1), .outcome = ascending[i], .problem = {}});
            both.observe({.call = 2, .address = address(0, 1), .outcome = ascending[j], .problem = {}});
            RunOutcomes best{AddressRanges{{address(0, 0), address(0, 255)}}};
            best.observe({.call = 1, .address = address(0, 1), .outcome = ascending[std::max(i, j)], .problem = {}});
            EXPECT_EQ(both.counts(), best.counts()) << i << ' ' << j;
        }
}

TEST_F(OutcomesOfARun, PrintersCountMoreThanAnythingObserved)
{
    outcomes.addPrinter("10.0.0.1");
    see(address(0, 1), Outcome::Failed, "later went wrong");
    see(address(0, 2), Outcome::Failed, "later went wrong");
    outcomes.addPrinter("10.0.0.2");
    EXPECT_THAT(listed(), ElementsAre("10.0.0.1 printer", "10.0.0.2 printer")) << "nor has a printer a problem";
}

TEST_F(OutcomesOfARun, TheProblemIsThatOfTheOutcomeThatCounts)
{
    see(address(0, 1), Outcome::WrongCredentials, "unknown user");
    see(address(0, 1), Outcome::Failed, "error status 5");
    see(address(0, 1), Outcome::WrongCredentials, "wrong digest");
    see(address(0, 2), Outcome::Silent, "no answer in 2 tries");
    EXPECT_THAT(listed(), ElementsAre("10.0.0.1 failed error status 5", "10.0.0.2 silent"));
}

TEST_F(OutcomesOfARun, WhatIsNotOfTheRunIsPassedOver)
{
    for (const std::uint32_t other : {address(0, 0), address(0, 255), address(1, 1), address(2, 9), address(3, 21), 0U})
        see(other, Outcome::Answered);
    for (const char* ip : {"10.0.1.1", "", "printer", "10.0.0.0"})
        outcomes.addPrinter(ip);
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(OutcomesOfARun, AreFetchedBitByBit)
{
    for (std::uint32_t last = 1; last <= 254; ++last)
        see(address(0, last), Outcome::Silent);
    see(address(2, 10), Outcome::Silent);
    EXPECT_THAT(listed(0, 2), ElementsAre("10.0.0.1 silent", "10.0.0.2 silent"));
    EXPECT_THAT(listed(address(0, 3), 1), ElementsAre("10.0.0.3 silent"));
    EXPECT_THAT(listed(address(0, 254), 9), ElementsAre("10.0.0.254 silent", "10.0.2.10 silent"));
    EXPECT_THAT(listed(address(0, 255), 9), ElementsAre("10.0.2.10 silent"));
    EXPECT_THAT(listed(address(2, 11), 9), IsEmpty());
    EXPECT_THAT(listed(LastAddress, 9), IsEmpty());
}

TEST_F(OutcomesOfARun, AreChosenByWhatIsWanted)
{
    see(address(0, 1), Outcome::Silent);
    see(address(0, 2), Outcome::Answered);
    const auto spoken = outcomes.list(0, 10, [](AddressOutcome outcome) { return outcome > AddressOutcome::Silent; });
    ASSERT_THAT(spoken, SizeIs(1));
    EXPECT_EQ(spoken[0].address, address(0, 2));
}

TEST_F(OutcomesOfARun, KeepAsManyProblemsAsTheyMayAndNoneTooLong)
{
    RunOutcomes large{AddressRanges{{0, LastAddress - 1}}};
    const std::string problem(1000, 'x');
    std::uint32_t at = 0;
    for (std::size_t i = 0; i < RunOutcomes::MostProblems + 100; ++i) {
        at += at % 256 == 254 ? 3 : 1;
        large.observe({.call = 1, .address = at, .outcome = Outcome::Failed, .problem = problem});
    }
    std::size_t kept = 0;
    for (const auto& entry : large.list(0, 100'000, [](AddressOutcome) { return true; })) {
        kept += entry.problem.empty() ? 0 : 1;
        EXPECT_LE(entry.problem.size(), RunOutcomes::LongestProblem);
    }
    EXPECT_EQ(kept, RunOutcomes::MostProblems);
    EXPECT_EQ(large.counts()[AddressOutcome::Failed], RunOutcomes::MostProblems + 100);
}

TEST_F(OutcomesOfARun, KeepProblemsFitToBePrinted)
{
    see(address(0, 1), Outcome::Failed, "\x1b[2J\xff");
    EXPECT_THAT(listed(), ElementsAre("10.0.0.1 failed \\x1B[2J\\xFF"));
}

TEST_F(OutcomesOfARun, AreTakenInFromManyThreads)
{
    {
        std::vector<std::jthread> threads;
        for (std::uint32_t i = 0; i < 8; ++i)
            threads.emplace_back([this, i] {
                for (std::uint32_t last = 1; last <= 254; ++last) {
                    see(address(0, last), i == 3 ? Outcome::Answered : Outcome::Silent);
                    EXPECT_EQ(outcomes.counts().total(), 254U + 245U + 20U);
                }
            });
    }
    EXPECT_EQ(count(AddressOutcome::NotPrinter), 254U);
    EXPECT_EQ(count(AddressOutcome::Silent), 0U);
}

} // namespace
} // namespace Host
