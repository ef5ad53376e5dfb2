#include "lab/Oid.h"

#include <gmock/gmock.h>

namespace Lab {
namespace {

Oid oid(std::string_view text)
{
    return parseOid(text).value();
}

Oid decoded(const Bytes& contents)
{
    Oid arcs;
    EXPECT_TRUE(decodeOidContents(contents, arcs));
    return arcs;
}

bool isDecodable(const Bytes& contents)
{
    Oid arcs{7};
    const bool result = decodeOidContents(contents, arcs);
    EXPECT_EQ(arcs[0], 7U) << "what was there is kept";
    EXPECT_EQ(arcs.size() > 1, result);
    return result;
}

std::string manyArcs(std::size_t count)
{
    std::string text = "1.3";
    for (std::size_t i = 2; i < count; ++i)
        text += ".1";
    return text;
}

TEST(ObjectIds, AreReadFromDottedText)
{
    EXPECT_EQ(oid("1.3.6.1"), (Oid{1, 3, 6, 1}));
    EXPECT_EQ(oid("0.0"), (Oid{0, 0}));
    EXPECT_EQ(oid("2.999.4294967295"), (Oid{2, 999, 4294967295U}));
}

TEST(ObjectIds, OtherTextsAreRefused)
{
    for (const char* text : {"", ".", "1", ".1.3", "1.3.", "1..3", "1.3.x", "1.3.-1", "1.3. 1", "1.3.4294967296", "3.1",
                             "1.40", "2.4294967295"})
        EXPECT_FALSE(parseOid(text)) << text;
}

TEST(ObjectIds, HoldAtMost128Arcs)
{
    EXPECT_TRUE(parseOid(manyArcs(128)));
    EXPECT_FALSE(parseOid(manyArcs(129)));
}

TEST(ObjectIds, PrintWithALeadingDot)
{
    EXPECT_EQ(formatOid(oid("1.3.6.1")), ".1.3.6.1");
}

TEST(ObjectIds, ArcsCompareAsNumbersAndAPrefixComesFirst)
{
    EXPECT_LT(oid("1.3.6.2"), oid("1.3.6.10"));
    EXPECT_LT(oid("1.3.16383"), oid("1.3.16384"));
    EXPECT_LT(oid("1.3.6"), oid("1.3.6.0"));
    EXPECT_LT(oid("1.3.6.9.9"), oid("1.3.7"));
}

TEST(ObjectIds, SurviveEncodingAndDecoding)
{
    for (const char* text : {"0.0", "0.39.1", "1.0", "1.3.6.1.2.1.1.1.0", "2.0", "2.40.1", "2.999.3",
                             "1.3.127.128.16383.16384.4294967295", "2.4294967215"})
        EXPECT_EQ(decoded(encodeOidContents(oid(text))), oid(text)) << text;
}

TEST(ObjectIds, DecodingAppends)
{
    Oid arcs{5};
    EXPECT_TRUE(decodeOidContents(Bytes{0x2B, 6}, arcs));
    EXPECT_EQ(arcs, (Oid{5, 1, 3, 6}));
}

TEST(ObjectIds, BrokenContentsAreRefused)
{
    EXPECT_FALSE(isDecodable({})) << "no arc at all";
    EXPECT_FALSE(isDecodable({0x2B, 0x86})) << "ends within an arc";
    EXPECT_FALSE(isDecodable({0x86})) << "ends within the first arc";
    EXPECT_FALSE(isDecodable({0x2B, 0x80, 0x01})) << "padded";
    EXPECT_FALSE(isDecodable({0x2B, 0x90, 0x80, 0x80, 0x80, 0x00})) << "an arc of 2^32";
    EXPECT_FALSE(isDecodable(Bytes(1000, 0xFF))) << "an arc without end";
    EXPECT_TRUE(isDecodable({0x2B, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F})) << "an arc of 2^32 - 1";
}

TEST(ObjectIds, ContentsOf129ArcsAreRefused)
{
    EXPECT_TRUE(isDecodable(Bytes(127, 1)));
    EXPECT_FALSE(isDecodable(Bytes(128, 1)));
}

TEST(ObjectIds, KnowTheirPrefixes)
{
    EXPECT_TRUE(startsWith(oid("1.3.6.1"), oid("1.3.6")));
    EXPECT_TRUE(startsWith(oid("1.3.6"), oid("1.3.6")));
    EXPECT_FALSE(startsWith(oid("1.3"), oid("1.3.6")));
    EXPECT_FALSE(startsWith(oid("1.3.61"), oid("1.3.6")));
}

} // namespace
} // namespace Lab
