#include "host/DisplayText.h"

#include "host/CharacterWidths.h"

#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

TEST(DisplayText, PlainAndAccentedTextsStay)
{
    for (const char* text : {"", "HP LaserJet 4250", "Büro Süd", "プリンター", "принтер", "é", "😀"})
        EXPECT_EQ(printable(text), text);
}

TEST(DisplayText, ControlCharactersBecomeVisible)
{
    EXPECT_EQ(printable("a\x1b[31mb"), "a\\x1B[31mb");
    EXPECT_EQ(printable("a\nb\tc\rd"), "a\\x0Ab\\x09c\\x0Dd");
    EXPECT_EQ(printable(std::string_view("\0", 1)), "\\x00");
    EXPECT_EQ(printable("\x7f"), "\\x7F");
}

TEST(DisplayText, ControlCharactersOfTheUpperHalfBecomeVisible)
{
    EXPECT_EQ(printable("\xC2\x9B"
                        "31m"),
              "\\x9B31m");
    EXPECT_EQ(printable("\xC2\x80\xC2\x9F\xC2\xA0"), "\\x80\\x9F\xC2\xA0");
}

TEST(DisplayText, NoControlByteEverPasses)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string shown = printable(std::string(1, static_cast<char>(byte)));
        for (const char c : shown)
            EXPECT_TRUE(c >= 0x20 && c < 0x7F) << byte;
    }
}

TEST(DisplayText, WhatReordersALineBecomesVisible)
{
    EXPECT_EQ(printable("a\u202Eb"), "a\\u202Eb");
    EXPECT_EQ(printable("a\u2066b\u200F\u2028"), "a\\u2066b\\u200F\\u2028");
}

TEST(DisplayText, BytesThatAreNotUtf8BecomeVisible)
{
    EXPECT_EQ(printable("B\xFCro"), "B\\xFCro");             // Latin-1
    EXPECT_EQ(printable("\xC3"), "\\xC3");                   // cut off
    EXPECT_EQ(printable("\xC0\xAF"), "\\xC0\\xAF");          // too long a form
    EXPECT_EQ(printable("\xE0\x80\xAF"), "\\xE0\\x80\\xAF"); // too long a form
    EXPECT_EQ(printable("\xED\xA0\x80"), "\\xED\\xA0\\x80"); // surrogate
    EXPECT_EQ(printable("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
    EXPECT_EQ(printable("\xE2\x82z"), "\\xE2\\x82z");
}

TEST(DisplayText, WidthCountsColumns)
{
    EXPECT_EQ(displayWidth(""), 0U);
    EXPECT_EQ(displayWidth("Büro"), 4U);
    EXPECT_EQ(displayWidth("e\u0301"), 1U); // combining accent
    EXPECT_EQ(displayWidth("プリンター"), 10U);
    EXPECT_EQ(displayWidth("한글"), 4U);
    EXPECT_EQ(displayWidth("ﬀ"), 1U);
    EXPECT_EQ(displayWidth("Ａ"), 2U);
    EXPECT_EQ(displayWidth("😀"), 2U);
}

TEST(DisplayText, WidthsAreThoseOfUnicode)
{
    EXPECT_EQ(displayWidth("ที่"), 1U);                    // Thai: a consonant with two marks
    EXPECT_EQ(displayWidth("हिन्दी"), 5U);                // Devanagari: the virama takes no column
    EXPECT_EQ(displayWidth("\u05E9\u05C1"), 1U);         // Hebrew point
    EXPECT_EQ(displayWidth("\u1112\u1161\u11AB"), 2U);   // a Hangul syllable in parts
    EXPECT_EQ(displayWidth("\u231A\u2705\u2B50"), 6U);   // pictographs outside the emoji block
    EXPECT_EQ(displayWidth("\u302A"), 0U);               // a mark among wide characters
    EXPECT_EQ(displayWidth("\U00020000\U0003FFFD"), 4U); // the first and last place for ideographs
    EXPECT_EQ(displayWidth("\u20AC\u2500\u00B1"), 3U);   // ambiguous ones are narrow
}

TEST(DisplayText, WidthTablesAreSorted)
{
    for (const auto& table : {combiningCharacters(), wideCharacters()})
        for (std::size_t i = 0; i < table.size(); ++i) {
            EXPECT_LE(table[i].first, table[i].last);
            EXPECT_TRUE(i == 0 || table[i - 1].last < table[i].first) << i;
        }
}

TEST(DisplayText, InvisibleTagsBecomeVisible)
{
    EXPECT_EQ(printable("a\U000E0041\u180E\uFFF9"), "a\\uE0041\\u180E\\uFFF9");
}

TEST(DisplayText, ShorteningEndsWithAnEllipsis)
{
    EXPECT_EQ(shortened("abcdef", 6), "abcdef");
    EXPECT_EQ(shortened("abcdef", 5), "abcd…");
    EXPECT_EQ(shortened("abcdef", 1), "…");
    EXPECT_EQ(shortened("漢字漢字", 6), "漢字…");
    EXPECT_EQ(shortened("e\u0301e\u0301e\u0301", 2), "e\u0301…");
}

TEST(DisplayText, JoiningPutsABlankBetween)
{
    EXPECT_EQ(joined({}), "");
    EXPECT_EQ(joined({"a"}), "a");
    EXPECT_EQ(joined({"a", "b"}), "a b");
}

TEST(DisplayText, PaddingGoesByColumns)
{
    EXPECT_EQ(padded("ab", 4), "ab  ");
    EXPECT_EQ(padded("漢", 4), "漢  ");
    EXPECT_EQ(padded("abcde", 4), "abcde");
}

TEST(DisplayText, QuotesAreCutToABoundedLength)
{
    EXPECT_EQ(inQuotes("a\nb"), "\"a\\x0Ab\"");
    EXPECT_EQ(inQuotes(std::string(80, 'a')), '"' + std::string(80, 'a') + '"');
    EXPECT_EQ(inQuotes(std::string(81, 'a')), '"' + std::string(80, 'a') + "...\"");
}

} // namespace
} // namespace Host
