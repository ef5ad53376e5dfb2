#include "snmp/Oid.h"

#include <gtest/gtest.h>

using Kep::Snmp::Oid;

namespace {

Oid oidOf(const char* text)
{
    return Oid::parse(text).value();
}

std::string arcs(std::size_t count)
{
    std::string text = ".1.3";
    for (std::size_t i = 2; i < count; ++i)
        text += ".1";
    return text;
}

} // namespace

TEST(ObjectIdentifiers, TextComesBackAsItWas)
{
    for (const char* text : {".1.3.6.1.2.1.1.1.0", ".0.0", ".1.39", ".2.4294967215", ".1.3.4294967295"})
        EXPECT_EQ(oidOf(text).text(), text);
}

TEST(ObjectIdentifiers, OtherTextIsNone)
{
    for (const char* text :
         {"", ".", "1.3.6", "..1.3", ".1", ".1.3.", ".1..3", ".1.3 ", " .1.3", ".1.a", ".1.-3", ".1.+3", ".3.1",
          ".0.40", ".1.40", ".2.4294967216", ".1.3.4294967296", "sysDescr.0", ".1.3,.1.3"})
        EXPECT_FALSE(Oid::parse(text)) << text;
    EXPECT_FALSE(Oid::parse(std::string_view(".1.3\0", 5)));
}

TEST(ObjectIdentifiers, HaveAtMost128Arcs)
{
    EXPECT_TRUE(Oid::parse(arcs(128)));
    EXPECT_FALSE(Oid::parse(arcs(129)));
}

TEST(ObjectIdentifiers, AreOrderedArcByArc)
{
    EXPECT_LT(oidOf(".1.3.6"), oidOf(".1.3.6.0"));
    EXPECT_LT(oidOf(".1.3.6.9"), oidOf(".1.3.6.10"));
    EXPECT_LT(oidOf(".1.3.6.9.9"), oidOf(".1.3.6.10"));
    EXPECT_LT(oidOf(".1.3.2147483647"), oidOf(".1.3.2147483648"));
    EXPECT_EQ(oidOf(".1.3.6"), oidOf(".1.3.6"));
}
