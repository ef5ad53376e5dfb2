#include "host/TargetPlan.h"

#include "host/Errors.h"
#include "host/Targets.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class TargetPlans : public testing::Test {
protected:
    TemporaryFolder folder;
    TargetArguments arguments;
    std::string standardInput;
    AddressRanges networks;

    /// The planned ranges, as a list of targets would have them.
    std::string plan()
    {
        std::istringstream input(standardInput);
        std::string text;
        for (const AddressRange& range : planTargets(arguments, {input, [this] { return networks; }}))
            text += (text.empty() ? "" : " ") + rangeText(range);
        return text;
    }

    std::string refusal()
    {
        try {
            return "accepted: " + plan();
        } catch (const UsageError& error) {
            return error.what();
        }
    }

    std::string listed(const std::string& content)
    {
        arguments = {};
        arguments.files = {folder.write("list", content)};
        return plan();
    }
};

TEST_F(TargetPlans, AddressesOfSeveralTargetsAreProbedOnce)
{
    arguments.targets = {"10.0.0.5-10.0.0.9", "10.0.0.0/29", "10.0.0.10,11", "10.0.0.7"};
    EXPECT_EQ(plan(), "10.0.0.0-10.0.0.11");
}

TEST_F(TargetPlans, ExcludesAreTakenOut)
{
    arguments.targets = {"10.0.0.0/24"};
    arguments.excludes = {"10.0.0.0-10.0.0.9,10.0.0.20", "10.0.0.250-255"};
    EXPECT_EQ(plan(), "10.0.0.10-10.0.0.19 10.0.0.21-10.0.0.249");
}

TEST_F(TargetPlans, RangesInWhichNothingIsProbedAreDropped)
{
    arguments.targets = {"10.0.0.250-10.0.1.5"};
    arguments.excludes = {"10.0.0.1-254", "10.0.1.1-254"};
    EXPECT_EQ(plan(), "");
    arguments.excludes = {"10.0.0.252-254", "10.0.1.1-2"};
    EXPECT_EQ(plan(), "10.0.0.250-10.0.0.251 10.0.1.3-10.0.1.5");
}

TEST_F(TargetPlans, RangesBetweenWhichNothingIsProbedAreOne)
{
    arguments.targets = {"10.0-255.0-255.1-254"};
    EXPECT_EQ(plan(), "10.0.0.1-10.255.255.254");
    arguments.targets = {"10.0.0-3.1-253"};
    EXPECT_EQ(plan(), "10.0.0.1-10.0.0.253 10.0.1.1-10.0.1.253 10.0.2.1-10.0.2.253 10.0.3.1-10.0.3.253");
}

TEST_F(TargetPlans, ListsHoldTargetsInLinesAndComments)
{
    EXPECT_EQ(listed("10.0.0.1\n10.0.0.9 10.0.1.1\t10.0.2.0/31\n"), "10.0.0.1 10.0.0.9 10.0.1.1 10.0.2.0-10.0.2.1");
    EXPECT_EQ(listed("# all of them\n\n   \n  10.0.0.1 # the first\n10.0.0.5,9#others\n#10.0.0.7"),
              "10.0.0.1 10.0.0.5 10.0.0.9");
    EXPECT_EQ(listed("10.0.0.1\r\n10.0.0.9\r\n"), "10.0.0.1 10.0.0.9");
    EXPECT_EQ(listed("\xEF\xBB\xBF"
                     "10.0.0.1"),
              "10.0.0.1");
}

TEST_F(TargetPlans, ListsMayBeManyAndStandBesideTargets)
{
    arguments.targets = {"10.0.0.1"};
    arguments.files = {folder.write("a", "10.0.0.3"), folder.write("b", "10.0.0.5")};
    arguments.excludeFiles = {folder.write("c", "10.0.0.3 # not this one\n")};
    EXPECT_EQ(plan(), "10.0.0.1 10.0.0.5");
}

TEST_F(TargetPlans, StandardInputIsAList)
{
    standardInput = "10.0.0.1 # one\n10.0.0.3\n";
    arguments.targets = {"-", "10.0.0.5"};
    EXPECT_EQ(plan(), "10.0.0.1 10.0.0.3 10.0.0.5");
    arguments.targets = {};
    arguments.files = {"-"};
    EXPECT_EQ(plan(), "10.0.0.1 10.0.0.3");
    arguments = {{"10.0.0.1-9"}, {}, {}, {"-"}};
    EXPECT_EQ(plan(), "10.0.0.2 10.0.0.4-10.0.0.9");
}

TEST_F(TargetPlans, StandardInputIsReadOnce)
{
    standardInput = "10.0.0.1\n";
    arguments = {{"-", "-"}, {}, {}, {}};
    EXPECT_THAT(refusal(), HasSubstr("only once"));
    arguments = {{"-"}, {}, {}, {"-"}};
    EXPECT_THAT(refusal(), HasSubstr("only once"));
}

TEST_F(TargetPlans, LocalMeansTheNetworksOfThisMachine)
{
    networks = {{0xC0A80100, 0xC0A801FF}, {0x0A000000, 0x0A000003}};
    arguments.targets = {"@local"};
    EXPECT_EQ(plan(), "10.0.0.0-10.0.0.3 192.168.1.0-192.168.1.255");
    arguments = {{"10.0.0.0/28"}, {}, {"@local"}, {}};
    EXPECT_EQ(plan(), "10.0.0.4-10.0.0.15");
    EXPECT_EQ(listed("@local\n"), "10.0.0.0-10.0.0.3 192.168.1.0-192.168.1.255");
}

TEST_F(TargetPlans, LocalNeedsANetwork)
{
    arguments.targets = {"@local"};
    EXPECT_THAT(refusal(), AllOf(HasSubstr("@local"), HasSubstr("no IPv4 network")));
    networks = {{0x0A000000, 0x0A000000}}; // an address that is never probed, alone
    EXPECT_THAT(refusal(), HasSubstr("@local"));
}

TEST_F(TargetPlans, NothingReachesTheLastAddressOfAll)
{
    networks = {{0xFFFFFF00, LastAddress}};
    arguments.targets = {"@local", "255.255.255.0/24"};
    EXPECT_EQ(plan(), "255.255.255.0-255.255.255.254");
}

TEST_F(TargetPlans, RefusalsNameListAndLine)
{
    const std::string path = folder.write("list", "10.0.0.1\n\n10.0.0.2 nowhere # \n");
    arguments.files = {path};
    EXPECT_THAT(refusal(), AllOf(HasSubstr(path + ":3: \"nowhere\" is no address"), Not(HasSubstr("10.0.0.2"))));
    arguments = {{"10.0.0.1"}, {}, {}, {folder.write("skip", "10.0.0.9-10.0.0.1")}};
    EXPECT_THAT(refusal(), HasSubstr("skip:1: \"10.0.0.9-10.0.0.1\" is reversed"));
    standardInput = "10.0.0.1\n10.0.1.0\n";
    arguments = {{"-"}, {}, {}, {}};
    EXPECT_THAT(refusal(), HasSubstr("standard input:2: \"10.0.1.0\" holds no address"));
}

TEST_F(TargetPlans, ListsThatCannotBeReadAreNamed)
{
    arguments.files = {folder.file("absent")};
    EXPECT_THAT(refusal(), AllOf(HasSubstr("--target-file"), HasSubstr("absent"), HasSubstr("No such file")));
    std::filesystem::create_directory(folder.file("folder"));
    arguments.files = {folder.file("folder")};
    EXPECT_THAT(refusal(), AllOf(HasSubstr("folder"), HasSubstr("Is a directory")));
    arguments = {{"10.0.0.1"}, {}, {}, {folder.file("absent")}};
    EXPECT_THAT(refusal(), HasSubstr("--exclude-file"));
}

TEST_F(TargetPlans, ThereHasToBeATarget)
{
    EXPECT_THAT(refusal(), HasSubstr("TARGET"));
    arguments.excludes = {"10.0.0.1"};
    EXPECT_THAT(refusal(), HasSubstr("TARGET"));
    arguments = {{}, {folder.write("empty", "# nothing\n")}, {}, {}};
    EXPECT_THAT(refusal(), HasSubstr("no target"));
    arguments = {{"-"}, {}, {}, {}};
    EXPECT_THAT(refusal(), HasSubstr("no target"));
}

TEST_F(TargetPlans, ManyTargetsOfOneRangeAreNoOffence)
{
    std::string list;
    for (int i = 0; i < 200000; ++i)
        list += "10.0.0.1\n";
    EXPECT_EQ(listed(list), "10.0.0.1");
}

TEST_F(TargetPlans, TheNumberOfSeparateRangesIsBounded)
{
    arguments.targets = {"10.0-255.0-255.1", "10.0-255.0-255.3"};
    EXPECT_THAT(refusal(), HasSubstr("at most 65536"));
    arguments.targets = {"10.0-255.0-255.1"};
    arguments.excludes = {"10.0.0.1"};
    EXPECT_THAT(refusal(), HasSubstr("accepted"));
    arguments.targets = {"10.0-255.0-255.1-9"};
    arguments.excludes = {"10.0-255.0-255.5"};
    EXPECT_THAT(refusal(), HasSubstr("at most 65536"));
}

} // namespace
} // namespace Host
