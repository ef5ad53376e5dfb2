#include "host/OutcomeTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace Host {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

OutcomeCounts countsOf(const std::vector<std::pair<AddressOutcome, std::uint64_t>>& parts)
{
    OutcomeCounts counts;
    for (const auto& [outcome, count] : parts)
        counts.of[static_cast<std::size_t>(outcome)] = count;
    return counts;
}

constexpr RunUse byCommunity{.port = 161, .communities = true, .users = false};
constexpr RunUse byUser{.port = 1161, .communities = false, .users = true};

TEST(OutcomeCountsText, NamesWhatThereWas)
{
    EXPECT_EQ(countsText(countsOf({{AddressOutcome::Printer, 3},
                                   {AddressOutcome::NotPrinter, 12},
                                   {AddressOutcome::Failed, 1},
                                   {AddressOutcome::WrongCredentials, 2},
                                   {AddressOutcome::PortClosed, 40},
                                   {AddressOutcome::Unreachable, 4},
                                   {AddressOutcome::Silent, 190},
                                   {AddressOutcome::NotProbed, 2}})),
              "254 addresses: 3 printers, 12 other devices answered, 1 failed, 2 wrong credentials, 40 port closed, "
              "4 unreachable, 190 silent, 2 not probed");
}

TEST(OutcomeCountsText, LeavesOutWhatThereWasNot)
{
    EXPECT_EQ(countsText(countsOf({{AddressOutcome::Silent, 254}})), "254 addresses: 254 silent");
    EXPECT_EQ(countsText({}), "0 addresses");
}

TEST(OutcomeCountsText, KnowsOneFromMany)
{
    EXPECT_EQ(countsText(countsOf({{AddressOutcome::Printer, 1}})), "1 address: 1 printer");
    EXPECT_EQ(countsText(countsOf({{AddressOutcome::Printer, 1}, {AddressOutcome::NotPrinter, 1}})),
              "2 addresses: 1 printer, 1 other device answered");
    EXPECT_EQ(countsText(countsOf({{AddressOutcome::NotPrinter, 1}})), "1 address: 1 device answered");
    EXPECT_EQ(countsText(countsOf({{AddressOutcome::NotPrinter, 2}})), "2 addresses: 2 devices answered");
}

TEST(Advice, IsNotGivenToThoseWhoFoundPrinters)
{
    EXPECT_THAT(adviceFor(countsOf({{AddressOutcome::Printer, 1}, {AddressOutcome::Silent, 253}}), byCommunity),
                IsEmpty());
}

TEST(Advice, OnSilenceNamesTheFirewallAndTheCommunity)
{
    EXPECT_THAT(adviceFor(countsOf({{AddressOutcome::Silent, 254}}), byCommunity),
                ElementsAre(AllOf(HasSubstr("254 addresses are silent"), HasSubstr("firewall"), HasSubstr("port 161"),
                                  HasSubstr("wrong community"), HasSubstr("version 3"))));
    EXPECT_THAT(adviceFor(countsOf({{AddressOutcome::Silent, 1}}), byUser),
                ElementsAre(AllOf(HasSubstr("1 address is silent"), HasSubstr("port 1161"), Not(HasSubstr("community")),
                                  Not(HasSubstr("version 3")))));
}

TEST(Advice, OnRefusedCredentialsNamesThoseThatWereUsed)
{
    const OutcomeCounts refused = countsOf({{AddressOutcome::WrongCredentials, 2}});
    EXPECT_THAT(adviceFor(refused, byUser), ElementsAre(AllOf(HasSubstr("2 devices refuse"), HasSubstr("user name"))));
    EXPECT_THAT(adviceFor(refused, byCommunity), ElementsAre(HasSubstr("this community")));
}

TEST(Advice, ComesForEachKindOfOutcomeMostTellingFirst)
{
    const auto advice = adviceFor(countsOf({{AddressOutcome::Silent, 1},
                                            {AddressOutcome::Unreachable, 2},
                                            {AddressOutcome::PortClosed, 3},
                                            {AddressOutcome::WrongCredentials, 4},
                                            {AddressOutcome::Failed, 5},
                                            {AddressOutcome::NotPrinter, 6}}),
                                  byCommunity);
    EXPECT_THAT(advice, ElementsAre(HasSubstr("4 devices refuse"), HasSubstr("5 devices began"),
                                    HasSubstr("6 devices answer"), HasSubstr("3 hosts have UDP port 161 closed"),
                                    HasSubstr("2 addresses cannot be reached"), HasSubstr("1 address is silent")));
}

TEST(Advice, IsNotGivenWhereNothingWasProbed)
{
    EXPECT_THAT(adviceFor(countsOf({{AddressOutcome::NotProbed, 9}}), byCommunity), IsEmpty());
}

TEST(Advice, KnowsFromTheProfilesWhatARunUses)
{
    const RunUse use = useOf({{{"snmpVersion", 2}, {"snmpPort", 1161}}, {{"snmpVersion", 3}, {"snmpPort", 1161}}});
    EXPECT_TRUE(use.communities && use.users);
    EXPECT_EQ(use.port, 1161);
    EXPECT_FALSE(useOf({{{"snmpVersion", 1}, {"snmpPort", 161}}}).users);
    EXPECT_FALSE(useOf({{{"snmpVersion", 3}, {"snmpPort", 161}}}).communities);
}

} // namespace
} // namespace Host
