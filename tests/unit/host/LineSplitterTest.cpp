#include "host/LineSplitter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SplitLines : public testing::Test {
protected:
    std::vector<std::string> seen;
    LineSplitter lines{5, [this](const std::string& line) { seen.push_back(line); },
                       [this] { seen.push_back("TOO LONG"); }};
};

TEST_F(SplitLines, ComeWithoutTheirEnds)
{
    lines.feed("a\nbc\n\nd\n");
    EXPECT_THAT(seen, ElementsAre("a", "bc", "", "d"));
}

TEST_F(SplitLines, AreJoinedOverReads)
{
    lines.feed("a");
    lines.feed("b");
    EXPECT_THAT(seen, IsEmpty());
    lines.feed("\nc");
    lines.finish();
    EXPECT_THAT(seen, ElementsAre("ab", "c"));
}

TEST_F(SplitLines, AtTheEndOfTheStreamNeedNoEnd)
{
    lines.feed("a\nb");
    lines.finish();
    EXPECT_THAT(seen, ElementsAre("a", "b"));
}

TEST_F(SplitLines, NothingAfterTheLastEndIsNoLine)
{
    lines.feed("a\n");
    lines.finish();
    EXPECT_THAT(seen, ElementsAre("a"));
}

TEST_F(SplitLines, OfTheFullLengthPass)
{
    lines.feed("12345\n");
    EXPECT_THAT(seen, ElementsAre("12345"));
}

TEST_F(SplitLines, BeyondTheFullLengthAreDroppedWhole)
{
    lines.feed("123456\nab\n");
    lines.feed("123");
    lines.feed("456");
    lines.feed("789\ncd\n");
    EXPECT_THAT(seen, ElementsAre("TOO LONG", "ab", "TOO LONG", "cd"));
}

TEST_F(SplitLines, TooLongAtTheEndOfTheStreamIsReportedOnce)
{
    lines.feed("123456");
    lines.finish();
    EXPECT_THAT(seen, ElementsAre("TOO LONG"));
}

} // namespace
} // namespace Host
