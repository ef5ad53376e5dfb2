#include "host/ProgressLine.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace Host {
namespace {

using namespace std::chrono_literals;

RunResult progress(std::uint32_t step, std::uint32_t total, std::size_t found)
{
    RunResult result;
    result.step = step;
    result.total = total;
    result.state = 2;
    result.printers.resize(found);
    return result;
}

/// What a terminal of this many columns shows of a line painted with carriage returns.
std::string screenOf(const std::string& painted)
{
    std::string screen;
    std::size_t column = 0;
    for (const char c : painted) {
        if (c == '\r') {
            column = 0;
            continue;
        }
        if (column == screen.size())
            screen += ' ';
        screen[column++] = c;
    }
    screen.erase(screen.find_last_not_of(' ') + 1);
    return screen;
}

class ProgressLines : public testing::Test {
protected:
    std::ostringstream terminal;
    std::size_t width = 80;
    std::chrono::steady_clock::time_point time{};
    ProgressLine line{terminal, [this] { return width; }, [this] { return time; }};
};

TEST(ProgressText, SaysProbedOfTotalFoundAndElapsed)
{
    EXPECT_EQ(progressText(progress(57, 254, 3), 12s, 80), "57 of 254 probed, 3 printers found, 0:12");
    EXPECT_EQ(progressText(progress(0, 254, 1), 0s, 80), "0 of 254 probed, 1 printer found, 0:00");
    EXPECT_EQ(progressText(progress(57, 254, 0), 754s, 80), "57 of 254 probed, 0 printers found, 12:34");
    EXPECT_EQ(progressText(progress(57, 254, 0), 36005s, 80), "57 of 254 probed, 0 printers found, 10:00:05");
}

TEST(ProgressText, AlwaysFitsTheWidth)
{
    EXPECT_EQ(progressText(progress(57, 254, 3), 12s, 41), "57 of 254 probed, 3 printers found, 0:12");
    EXPECT_EQ(progressText(progress(57, 254, 3), 12s, 40), "57/254, 3 printers, 0:12");
    EXPECT_EQ(progressText(progress(57, 254, 3), 12s, 24), "57/254");
    EXPECT_EQ(progressText(progress(57, 254, 3), 12s, 6), "57");
    const RunResult large = progress(4261412864U, 4261412864U, 1000);
    for (std::size_t width = 0; width < 100; ++width)
        EXPECT_LE(progressText(large, 999999s, width).size(), width);
}

TEST(SummaryText, SaysWhatWasDone)
{
    EXPECT_EQ(summaryText(progress(254, 254, 3), 2149ms), "254 of 254 addresses probed, 3 printers found in 2.1 s");
    RunResult result = progress(7, 254, 1);
    result.interrupted = true;
    EXPECT_EQ(summaryText(result, 500ms), "Interrupted: 7 of 254 addresses probed, 1 printer found in 0.5 s");
}

TEST_F(ProgressLines, ARepaintReplacesTheLine)
{
    line.show(progress(9, 254, 0));
    time += 61s;
    line.show(progress(100, 254, 2));
    EXPECT_EQ(screenOf(terminal.str()), "100 of 254 probed, 2 printers found, 1:01");
    EXPECT_EQ(terminal.str().find('\n'), std::string::npos);
}

TEST_F(ProgressLines, AShorterTextLeavesNothingOfALonger)
{
    line.show(progress(254, 254, 10));
    width = 20;
    line.show(progress(254, 254, 10));
    EXPECT_EQ(screenOf(terminal.str()), "254/254");
}

TEST_F(ProgressLines, NothingNewIsNotPaintedAgain)
{
    line.show(progress(9, 254, 0));
    const std::string before = terminal.str();
    line.show(progress(9, 254, 0));
    EXPECT_EQ(terminal.str(), before);
}

TEST_F(ProgressLines, ClearingLeavesAnEmptyLine)
{
    line.show(progress(9, 254, 0));
    line.clear();
    EXPECT_EQ(screenOf(terminal.str()), "");
    EXPECT_EQ(terminal.str().back(), '\r');
}

TEST_F(ProgressLines, TheSummaryTakesTheLinesPlace)
{
    line.show(progress(254, 254, 10));
    time += 1500ms;
    line.finish(progress(254, 254, 10));
    const std::string text = terminal.str();
    EXPECT_TRUE(text.ends_with("\r254 of 254 addresses probed, 10 printers found in 1.5 s\n"));
}

} // namespace
} // namespace Host
