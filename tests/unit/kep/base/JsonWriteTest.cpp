#include "Kep/Json.h"

#include <gtest/gtest.h>

#include <random>

using Kep::Json::_encodeString;

namespace {

TEST(JsonStrings, QuotesBackslashesAndControlCharactersAreEscaped)
{
    EXPECT_EQ(_encodeString(""), "\"\"");
    EXPECT_EQ(_encodeString("a\"b\\c/d"), R"("a\"b\\c/d")");
    EXPECT_EQ(_encodeString("\b\t\n\f\r"), R"("\b\t\n\f\r")");
    EXPECT_EQ(_encodeString(std::string("\0\x01\x0B\x1F", 4)), R"("\u0000\u0001\u000b\u001f")");
}

TEST(JsonStrings, ValidUtf8Passes)
{
    for (const std::string text : {"plain", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x96\xA8", "\x7F", "\xE2\x80\xA8",
                                   "\xEF\xBF\xBF", "\xF4\x8F\xBF\xBF", "\xEE\x80\x80", "\xED\x9F\xBF"}) {
        EXPECT_EQ(_encodeString(text), "\"" + text + "\"");
    }
}

TEST(JsonStrings, BytesOutsideUtf8BecomeLatin1Characters)
{
    EXPECT_EQ(_encodeString("B\xFCro"), "\"B\xC3\xBCro\"");
    EXPECT_EQ(_encodeString("\x80\xFF"), "\"\xC2\x80\xC3\xBF\"");
    EXPECT_EQ(_encodeString("\xC0\xAF"), "\"\xC3\x80\xC2\xAF\"") << "overlong";
    EXPECT_EQ(_encodeString("\xC1\xBF"), "\"\xC3\x81\xC2\xBF\"") << "overlong";
    EXPECT_EQ(_encodeString("\xE0\x9F\xBF"), "\"\xC3\xA0\xC2\x9F\xC2\xBF\"") << "overlong";
    EXPECT_EQ(_encodeString("\xF0\x8F\xBF\xBF"), "\"\xC3\xB0\xC2\x8F\xC2\xBF\xC2\xBF\"") << "overlong";
    EXPECT_EQ(_encodeString("\xED\xA0\x80"), "\"\xC3\xAD\xC2\xA0\xC2\x80\"") << "surrogate";
    EXPECT_EQ(_encodeString("\xF4\x90\x80\x80"), "\"\xC3\xB4\xC2\x90\xC2\x80\xC2\x80\"") << "beyond Unicode";
    EXPECT_EQ(_encodeString("\xE2\x82"), "\"\xC3\xA2\xC2\x82\"") << "cut short at the end";
    EXPECT_EQ(_encodeString("\xE2\x82x\xC3\xA4"), "\"\xC3\xA2\xC2\x82x\xC3\xA4\"") << "cut short in the middle";
    EXPECT_EQ(_encodeString("\xF5\x80\x80\x80"), "\"\xC3\xB5\xC2\x80\xC2\x80\xC2\x80\"") << "no lead byte";
}

TEST(JsonStrings, AnyBytesGiveJsonThatReadsBack)
{
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        std::string bytes(random() % 12, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        const std::string literal = _encodeString(bytes);
        const std::string back = static_cast<std::string>(Kep::Json::parse(literal));
        EXPECT_EQ(_encodeString(back), literal); // what has been read is valid UTF-8, so it passes
    }
}

TEST(JsonObjects, GrowMemberByMember)
{
    Kep::Json::Object object;
    EXPECT_EQ(static_cast<std::string>(object), "{}");
    object.add("b", "x\"y");
    EXPECT_EQ(static_cast<std::string>(object), R"({"b":"x\"y"})");
    object.addJson("a", "[1]");
    EXPECT_EQ(static_cast<std::string>(object), R"({"b":"x\"y","a":[1]})");
}

TEST(JsonObjects, RawAppendsFollowPrepareAdd)
{
    Kep::Json::Object object;
    for (const std::string key : {"step", "total"}) {
        object.prepareAdd();
        object.append("\"" + key + "\":");
        object.append("7}");
    }
    EXPECT_EQ(static_cast<std::string>(object), R"({"step":7,"total":7})");
}

TEST(JsonObjects, EmptyJsonCountsAsNull)
{
    Kep::Json::Object object;
    object.addJson("params", "");
    EXPECT_EQ(static_cast<std::string>(object), R"({"params":null})");
}

TEST(JsonArrays, GrowElementByElement)
{
    Kep::Json::Array array;
    EXPECT_EQ(array.toJson(), "[]");
    array.addJson("{}");
    array.addJson("");
    array.prepareAdd();
    array.append("\"x\"");
    array.append("]");
    EXPECT_EQ(array.toJson(), R"([{},null,"x"])");
}

} // namespace
