#include "host/IniFile.h"

#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// "[section] key=value key=value [section]…"
std::string read(std::string_view text)
{
    std::string shown;
    for (const IniSection& section : parseIni(text, "f")) {
        shown += "[" + section.name + "]";
        for (const IniEntry& entry : section.entries)
            shown += ' ' + entry.key + '=' + entry.value;
    }
    return shown;
}

std::string iniRefusal(std::string_view text)
{
    try {
        return read(text);
    } catch (const UsageError& error) {
        return error.what();
    }
}

TEST(IniFiles, HoldSectionsOfKeysAndValues)
{
    EXPECT_EQ(read("[a]\nx = 1\ny=2\n[second floor]\nx = 3"), "[a] x=1 y=2[second floor] x=3");
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(read("[a]"), "[a]");
}

TEST(IniFiles, CommentsAndEmptyLinesArePassedOver)
{
    EXPECT_EQ(read("# one\n; two\n\n[a]\n  # three\n\t\nx = 1\n"), "[a] x=1");
}

TEST(IniFiles, BlanksAroundNamesAndValuesDoNotCount)
{
    EXPECT_EQ(read("  [ a b ]  \r\n\t x  =\t 1 2 \r\n"), "[a b] x=1 2");
}

TEST(IniFiles, ValuesMayHoldAnything)
{
    EXPECT_EQ(read("[a]\nx = p#ss;w=rd]\n"), "[a] x=p#ss;w=rd]");
    EXPECT_EQ(read("[a]\nx ="), "[a] x=");
}

TEST(IniFiles, QuotesKeepBlanksAndQuotes)
{
    EXPECT_EQ(read("[a]\nx = \"  1 \"\n"), "[a] x=  1 ");
    EXPECT_EQ(read("[a]\nx = \"\"1\"\"\n"), "[a] x=\"1\"");
    EXPECT_EQ(read("[a]\nx = \"\"\ny = \"\nz = a\"b\n"), "[a] x= y=\" z=a\"b");
}

TEST(IniFiles, LinesOfAnotherFormAreRefusedAndNotRepeated)
{
    EXPECT_THAT(iniRefusal("[a]\nx = 1\ns3cret\n"),
                AllOf(HasSubstr("f:3:"), HasSubstr("KEY = VALUE"), Not(HasSubstr("s3cret"))));
    EXPECT_THAT(iniRefusal("[a]\n= s3cret\n"), AllOf(HasSubstr("f:2:"), Not(HasSubstr("s3cret"))));
    for (const char* text : {"[a", "[]", "[ ]", "["})
        EXPECT_THAT(iniRefusal(text), AllOf(HasSubstr("f:1:"), HasSubstr("[NAME]"))) << text;
    EXPECT_THAT(iniRefusal("x = s3cret\n[a]\n"),
                AllOf(HasSubstr("f:1:"), HasSubstr("[NAME]"), Not(HasSubstr("s3cret"))));
}

TEST(IniFiles, NothingIsGivenTwice)
{
    EXPECT_THAT(iniRefusal("[a]\n[b]\n[a]\n"), HasSubstr("f:3: there is a section of this name already"));
    EXPECT_THAT(iniRefusal("[a]\nx = 1\nx = 2\n"), HasSubstr("f:3: the section has this key already"));
    EXPECT_EQ(read("[a]\nx = 1\n[b]\nx = 2\n"), "[a] x=1[b] x=2");
}

} // namespace
} // namespace Host
