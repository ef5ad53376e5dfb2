#include "base/FormatText.h"

#include <gtest/gtest.h>

namespace {

TEST(FormattedText, IsAsLongAsItsArgumentsMakeIt)
{
    EXPECT_EQ(Kep::formatText("%s", ""), "");
    EXPECT_EQ(Kep::formatText("<%s|%d>", "a", -7), "<a|-7>");
    const std::string longText(100000, 'x');
    EXPECT_EQ(Kep::formatText("<%s>", longText.c_str()), "<" + longText + ">");
}

} // namespace
