#include "host/ComparisonFormats.h"

#include "host/Errors.h"
#include "host/ResultFormats.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

Printer printer(const std::string& ip, const std::string& sn = "", const std::vector<std::string>& mac = {},
                const std::string& name = "Office", const std::string& hostname = "")
{
    return {hostname, ip, mac, name, sn};
}

class Comparisons : public testing::Test {
protected:
    std::vector<Printer> before;
    RunResult now;
    AddressRanges swept = {{0x0A000000, 0x0A00FFFF}};

    Comparison compared() const { return compare(before, now, swept); }

    /// "+new -gone >from:to ~changed =same"
    std::string shown() const
    {
        const Comparison comparison = compared();
        std::string text;
        for (const Printer& each : comparison.added)
            text += '+' + each.ip + ' ';
        for (const Printer& each : comparison.gone)
            text += '-' + each.ip + ' ';
        for (const PrinterPair& each : comparison.moved)
            text += '>' + each.before.ip + ':' + each.now.ip + ' ';
        for (const PrinterPair& each : comparison.changed)
            text += '~' + each.now.ip + ' ';
        return text + '=' + std::to_string(comparison.same);
    }
};

TEST_F(Comparisons, NothingChangedIsAllTheSame)
{
    before = {printer("10.0.0.1", "A", {"m1"}), printer("10.0.0.2")};
    now.printers = {printer("10.0.0.2"), printer("10.0.0.1", "A", {"m1"})};
    EXPECT_EQ(shown(), "=2");
    before = now.printers = {};
    EXPECT_EQ(shown(), "=0");
}

TEST_F(Comparisons, NewAndGonePrintersAreListedByAddress)
{
    before = {printer("10.0.0.9", "A"), printer("10.0.0.10", "B"), printer("10.0.0.1", "C")};
    now.printers = {printer("10.0.0.1", "C"), printer("10.0.0.30", "D"), printer("10.0.0.4", "E")};
    EXPECT_EQ(shown(), "+10.0.0.4 +10.0.0.30 -10.0.0.9 -10.0.0.10 =1");
}

TEST_F(Comparisons, ASerialNumberAtAnotherAddressHasMoved)
{
    before = {printer("10.0.0.1", "A"), printer("10.0.0.2", "B")};
    now.printers = {printer("10.0.0.2", "A"), printer("10.0.0.1", "B")};
    EXPECT_EQ(shown(), ">10.0.0.2:10.0.0.1 >10.0.0.1:10.0.0.2 =0");
}

TEST_F(Comparisons, AMacAddressCountsWhereASerialNumberIsMissing)
{
    before = {printer("10.0.0.1", "", {"m1", "m2"})};
    now.printers = {printer("10.0.0.2", "", {"m3", "m2"})};
    EXPECT_EQ(shown(), ">10.0.0.1:10.0.0.2 ~10.0.0.2 =0");
    now.printers = {printer("10.0.0.2", "A", {"m1", "m2"})};
    EXPECT_EQ(shown(), ">10.0.0.1:10.0.0.2 ~10.0.0.2 =0");
}

TEST_F(Comparisons, TheAddressCountsWhereBothAreMissing)
{
    before = {printer("10.0.0.1"), printer("10.0.0.2", "A")};
    now.printers = {printer("10.0.0.1", "B"), printer("10.0.0.2", "", {"m1"})};
    EXPECT_EQ(shown(), "~10.0.0.1 ~10.0.0.2 =0");
}

TEST_F(Comparisons, AnotherDeviceAtAnAddressIsNew)
{
    before = {printer("10.0.0.1", "A", {"m1"}), printer("10.0.0.2", "", {"m2"})};
    now.printers = {printer("10.0.0.1", "B", {"m3"}), printer("10.0.0.2", "", {"m4"})};
    EXPECT_EQ(shown(), "+10.0.0.1 +10.0.0.2 -10.0.0.1 -10.0.0.2 =0");
}

TEST_F(Comparisons, ASerialNumberCountsMoreThanAMacAddress)
{
    before = {printer("10.0.0.1", "A", {"m1"}), printer("10.0.0.2", "B", {"m2"})};
    now.printers = {printer("10.0.0.1", "B", {"m1"}), printer("10.0.0.2", "C", {"m2"})};
    EXPECT_EQ(shown(), "+10.0.0.2 -10.0.0.1 >10.0.0.2:10.0.0.1 ~10.0.0.1 =0");
}

TEST_F(Comparisons, PrintersOfTwoSerialNumbersAreTwoWhateverElseTheyShare)
{
    before = {printer("10.0.0.1", "A", {"m1"})};
    now.printers = {printer("10.0.0.2", "B", {"m1"})};
    EXPECT_EQ(shown(), "+10.0.0.2 -10.0.0.1 =0");
}

TEST_F(Comparisons, OfSeveralWithOneSerialNumberTheAddressDecides)
{
    before = {printer("10.0.0.1", "0000"), printer("10.0.0.2", "0000"), printer("10.0.0.3", "0000")};
    now.printers = {printer("10.0.0.3", "0000"), printer("10.0.0.9", "0000"), printer("10.0.0.1", "0000")};
    EXPECT_EQ(shown(), ">10.0.0.2:10.0.0.9 =2");
}

TEST_F(Comparisons, MacAddressesOfZerosTellNothing)
{
    before = {printer("10.0.0.1", "", {"00-00-00-00-00-00"}), printer("10.0.0.2", "", {""})};
    now.printers = {printer("10.0.0.3", "", {"00-00-00-00-00-00"}), printer("10.0.0.4", "", {""})};
    EXPECT_EQ(shown(), "+10.0.0.3 +10.0.0.4 -10.0.0.1 -10.0.0.2 =0");
}

TEST_F(Comparisons, ChangedTextsAreNamed)
{
    before = {printer("10.0.0.1", "A", {"m1"}, "Office")};
    now.printers = {printer("10.0.0.1", "A", {"m1", "m2"}, "Hall")};
    const Comparison comparison = compared();
    ASSERT_EQ(comparison.changed.size(), 1U);
    const auto differences = differencesOf(comparison.changed[0]);
    ASSERT_EQ(differences.size(), 2U);
    EXPECT_EQ(differences[0].member + (' ' + differences[0].before) + ' ' + differences[0].now, "name Office Hall");
    EXPECT_EQ(differences[1].member + (' ' + differences[1].before) + ' ' + differences[1].now, "mac m1 m1 m2");
}

TEST_F(Comparisons, AHostNameIsComparedWhereBothHaveOne)
{
    before = {printer("10.0.0.1", "A", {}, "Office", "one")};
    now.printers = {printer("10.0.0.1", "A", {}, "Office", "")};
    EXPECT_EQ(shown(), "=1");
    now.printers[0].hostname = "two";
    EXPECT_EQ(shown(), "~10.0.0.1 =0");
}

TEST_F(Comparisons, WhatWasNotSweptIsNotGone)
{
    before = {printer("10.0.255.1", "A"), printer("10.1.0.1", "B"), printer("nowhere", "C")};
    EXPECT_EQ(shown(), "-10.0.255.1 =0");
    now.interrupted = true;
    EXPECT_EQ(shown(), "=0");
}

TEST_F(Comparisons, AreLinesForPeople)
{
    before = {printer("10.0.0.1", "A"), printer("10.0.0.2", "B"), printer("10.0.0.3", "C")};
    now.printers = {printer("10.0.0.4", "B"), printer("10.0.0.3", "C", {}, "Hall\x1b"),
                    printer("10.0.0.5", "D", {}, "")};
    EXPECT_EQ(comparisonText(compared(), "old.json", {}),
              "Compared with old.json: 1 new, 1 gone, 1 moved, 1 changed, 0 the same\n"
              "+ 10.0.0.5  D\n"
              "- 10.0.0.1  Office  A\n"
              "> 10.0.0.2 -> 10.0.0.4  Office  B\n"
              "~ 10.0.0.3  name \"Office\" -> \"Hall\\x1B\"\n");
}

TEST_F(Comparisons, MayBeColoured)
{
    before = {printer("10.0.0.1", "A")};
    EXPECT_THAT(comparisonText(compared(), "old", {.colours = true}),
                HasSubstr("\x1b[31m- 10.0.0.1  Office  A\x1b[0m\n"));
    EXPECT_THAT(comparisonText(compared(), "old", {}), Not(HasSubstr("\x1b")));
}

TEST_F(Comparisons, AreAMemberOfTheDocument)
{
    before = {printer("10.0.0.1", "A"), printer("10.0.0.2", "B"), printer("10.0.0.3", "C"), printer("10.0.0.6", "E")};
    now.printers = {printer("10.0.0.4", "B"), printer("10.0.0.3", "C", {}, "Hall"), printer("10.0.0.5", "D"),
                    printer("10.0.0.6", "E")};
    EXPECT_EQ(comparisonDocument(compared()).dump(),
              R"({"new":[{"hostname":"","ip":"10.0.0.5","mac":[],"name":"Office","sn":"D"}],)"
              R"("gone":[{"hostname":"","ip":"10.0.0.1","mac":[],"name":"Office","sn":"A"}],)"
              R"("moved":[{"from":"10.0.0.2","to":"10.0.0.4"}],)"
              R"("changed":[{"ip":"10.0.0.3","name":{"from":"Office","to":"Hall"}}],"same":1})");
    now.printers = {};
    before = {};
    EXPECT_EQ(jsonText(now, compared()), R"({"step":0,"total":0,"state":1,"printers":[],"diff":{"new":[],"gone":[],)"
                                         R"("moved":[],"changed":[],"same":0}})"
                                         "\n");
    EXPECT_EQ(streamEnd(now, compared()), R"({"step":0,"total":0,"state":1,"found":0,"diff":{"new":[],"gone":[],)"
                                          R"("moved":[],"changed":[],"same":0}})"
                                          "\n");
}

class EarlierResults : public testing::Test {
protected:
    TemporaryFolder folder;

    std::string refusal(const std::string& path)
    {
        try {
            readEarlierResult(path);
        } catch (const UsageError& error) {
            return error.what();
        }
        return "accepted";
    }
};

TEST_F(EarlierResults, AreWhatJsonWrote)
{
    RunResult result;
    result.printers = {printer("10.0.0.1", "A", {"m1", "m2"}, "B\u00fcro \u009b \"1\"", "host")};
    const std::string path = folder.write("old.json", jsonText(result));
    const EarlierResult earlier = readEarlierResult(path);
    EXPECT_EQ(earlier.name, path);
    EXPECT_EQ(earlier.printers, result.printers);
    EXPECT_FALSE(earlier.interrupted);
    result.interrupted = true;
    EXPECT_TRUE(readEarlierResult(folder.write("cut.json", jsonText(result, Comparison()))).interrupted);
}

TEST_F(EarlierResults, OfAnotherFormAreRefused)
{
    for (const char* content :
         {"", "x", "[]", "null", "{}", R"({"printers":{}})", R"({"printers":[{}]})", R"({"printers":[1]})",
          R"({"printers":[{"hostname":"","ip":1,"mac":[],"name":"","sn":""}]})",
          R"({"printers":[],"interrupted":"yes"})", "{\"printers\":[]}{}"}) {
        const std::string path = folder.write("old.json", content);
        EXPECT_THAT(refusal(path), AllOf(HasSubstr(path), HasSubstr("--format json"))) << content;
    }
    EXPECT_THAT(refusal(folder.file("absent")), AllOf(HasSubstr("--diff"), HasSubstr("No such file")));
}

} // namespace
} // namespace Host
