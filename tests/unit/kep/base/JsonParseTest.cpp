#include "Kep/Exception.h"
#include "Kep/Json.h"
#include "tests/unit/kep/base/Messages.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

using Kep::Variant;
using Kep::Json::parse;

namespace {

std::string textOf(std::string_view json)
{
    return static_cast<std::string>(parse(json));
}

std::string problemOf(std::string_view json)
{
    return messageOf([json] { parse(json); });
}

std::string nested(std::size_t levels)
{
    return std::string(levels, '[') + std::string(levels, ']');
}

TEST(JsonReading, YieldsEachKindOfValue)
{
    EXPECT_EQ(parse("null").type(), 0);
    EXPECT_EQ(parse("true").type(), 1);
    EXPECT_EQ(parse("-7").type(), 2);
    EXPECT_EQ(parse("7.5").type(), 3);
    EXPECT_EQ(parse("\"x\"").type(), 10);
    EXPECT_EQ(parse("[]").type(), 20);
    EXPECT_EQ(parse("{}").type(), 21);
    EXPECT_EQ(parse(" \t\r\n{ }\n").type(), 21);
}

TEST(JsonReading, OfAKeyGivenTwiceTheLastValueCountsAtTheFirstPlace)
{
    EXPECT_EQ(parse(R"({"a":1,"b":2,"a":{"x":0},"c":3,"a":9})").toJson(), R"({"a":9,"b":2,"c":3})");
    EXPECT_EQ(parse(R"({"a":1,"\u0061":2})").toJson(), R"({"a":2})");
}

TEST(JsonReading, ManyMembersTakeLittleTime)
{
    std::string json = "{";
    for (int index = 0; index < 200000; ++index) {
        json += "\"" + std::to_string(index) + "\":0,";
    }
    json.back() = '}';
    const auto start = std::chrono::steady_clock::now();
    Variant out;
    EXPECT_TRUE(parse(json).contains("199999", out));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60)); // a bound against quadratic time
}

TEST(JsonReading, TextsKeepEveryCharacterTheyEscape)
{
    EXPECT_EQ(textOf(R"("\u0000")"), std::string(1, '\0'));
    EXPECT_EQ(textOf(R"("\"\\\/\b\f\n\r\t")"), "\"\\/\b\f\n\r\t");
    EXPECT_EQ(textOf(R"("\u00e4\ud83d\ude00")"), "\xC3\xA4\xF0\x9F\x98\x80");
    EXPECT_EQ(textOf("\"\x7F\xE2\x80\xA8\""), "\x7F\xE2\x80\xA8");
}

TEST(JsonReading, AcceptsAByteOrderMark)
{
    EXPECT_EQ(parse("\xEF\xBB\xBF{\"a\":1}").toJson(), R"({"a":1})");
    EXPECT_EQ(problemOf("\xEF\xBB[]"), "malformed JSON at line 1, column 2: malformed byte order mark");
}

TEST(JsonReading, IntegersBeyond64BitsAreRealNumbers)
{
    EXPECT_EQ(parse("9223372036854775807").type(), 2);
    EXPECT_EQ(parse("-9223372036854775808").type(), 2);
    EXPECT_EQ(parse("9223372036854775808").type(), 3);
    EXPECT_EQ(parse("9223372036854775808").toJson(), "9223372036854775808.0");
    EXPECT_EQ(parse("18446744073709551616").type(), 3);
    EXPECT_EQ(parse("-9223372036854775809").type(), 3);
    EXPECT_EQ(parse("123456789012345678901234567890").toJson(), "1.2345678901234568e+29");
}

TEST(JsonReading, NumbersBeyondRealOnesAreRefused)
{
    EXPECT_EQ(problemOf("[1e999]"), "malformed JSON at line 1, column 6: number out of range");
}

TEST(JsonReading, NestsTo64Levels)
{
    EXPECT_EQ(parse(nested(64)).toJson(), nested(64));
    EXPECT_EQ(problemOf(nested(65)), "malformed JSON at line 1, column 65: more than 64 levels of nesting");
    EXPECT_EQ(problemOf(nested(1000000)), "malformed JSON at line 1, column 65: more than 64 levels of nesting");
}

TEST(JsonReading, LevelsAreCountedPastBracketsInTextsAndClosedOnes)
{
    const std::string head = "[[],{\"]\\\"}\":\"[[{\\\\\"},\n  ";
    EXPECT_EQ(problemOf(head + nested(64)), "malformed JSON at line 2, column 66: more than 64 levels of nesting");
    EXPECT_EQ(parse(head + nested(63) + "]").type(), 20);
}

TEST(JsonReading, AProblemIsLocatedAndDescribed)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "line 1, column 1: unexpected end"},
        {"  ", "line 1, column 3: unexpected end"},
        {"{\"a\":1", "line 1, column 7: unexpected end"},
        {"{\n  \"a\": 1,\n  \"b\" 2}", "line 3, column 7: value or punctuation in the wrong place"},
        {"[1,]", "line 1, column 4: value or punctuation in the wrong place"},
        {"{} x", "line 1, column 4: unknown word or character"},
        {"{} {}", "line 1, column 4: something follows the document"},
        {"{'a':1}", "line 1, column 2: unknown word or character"},
        {"[tru]", "line 1, column 5: unknown word or character"},
        {"[\"abc", "line 1, column 6: text without closing quote"},
        {"[\"a\nb\"]", "line 1, column 4: control character in a text"},
        {"[\"\\q\"]", "line 1, column 4: unknown escape in a text"},
        {"[\"\\u12g4\"]", "line 1, column 7: unknown escape in a text"},
        {"[\"\\ud800\"]", "line 1, column 9: unpaired surrogate in a text"},
        {"[-]", "line 1, column 3: malformed number"},
        {"[1.]", "line 1, column 4: malformed number"},
        {"[01]", "line 1, column 3: value or punctuation in the wrong place"},
        {"[\"\xC3\xA4\xC3\xB6\", x]", "line 1, column 8: unknown word or character"},
        {"// no\n{}", "line 1, column 1: unknown word or character"},
        {"NaN", "line 1, column 1: unknown word or character"},
    };
    for (const auto& [json, expected] : cases) {
        EXPECT_EQ(problemOf(json), "malformed JSON at " + expected) << json;
    }
}

TEST(JsonReading, RefusesBytesThatAreNotUtf8)
{
    for (const std::string bytes : {"\xE4", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
        const std::string problem = problemOf("[\"" + bytes + "\"]");
        EXPECT_NE(problem.find("text that is not valid UTF-8"), std::string::npos) << problem;
    }
}

TEST(JsonReading, ANulByteNeverEndsTheDocument)
{
    const std::string nul(1, '\0');
    EXPECT_EQ(problemOf("{}" + nul), "malformed JSON at line 1, column 3: NUL byte");
    EXPECT_EQ(problemOf("{}\n" + nul + "garbage"), "malformed JSON at line 2, column 1: NUL byte");
    EXPECT_EQ(problemOf("[\"a" + nul + "b\"]"), "malformed JSON at line 1, column 4: NUL byte");
}

TEST(JsonReading, MessagesNeverQuoteTheText)
{
    const std::vector<std::string> documents = {R"({"authPwd":"hunter2" "x":1})",
                                                R"({"authPwd":"hunter2)",
                                                R"({"authPwd":"hunter2\q"})",
                                                "{\"authPwd\":\"hunter2\n\"}",
                                                R"({"authPwd":hunter2})",
                                                R"({"authPwd":"hunter2"}hunter2)",
                                                R"(["hunter2": 1])",
                                                "[\"hunter2\xFF\"]",
                                                R"({"hunter2"})",
                                                R"({"hunter2" "hunter2"})",
                                                "[\"hunter2\\ud800\"]",
                                                R"([1e999,"hunter2"])",
                                                "hunter2",
                                                "\"hunter2",
                                                "[\"last read unexpected hunter2",
                                                "\"hunter2\" \"hunter2\""};
    for (const std::string& document : documents) {
        const std::string problem = problemOf(document);
        EXPECT_EQ(problem.rfind("malformed JSON at line 1, column ", 0), 0u) << document << ": " << problem;
        EXPECT_EQ(problem.find("hunter2"), std::string::npos) << problem;
        EXPECT_EQ(problem.find("authPwd"), std::string::npos) << problem;
    }
}

TEST(JsonReading, ARequestThatWasCutAnywhereIsRefused)
{
    const std::string whole = R"({"config":{"usePing":true,"list":[1.5,null]},"cookie":"\u00e4\"x"})";
    ASSERT_EQ(parse(whole).type(), 21);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_THROW(parse(whole.substr(0, length)), Kep::GenericException) << length;
    }
}

} // namespace
