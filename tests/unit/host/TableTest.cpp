#include "host/Table.h"

#include "host/DisplayText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace Host {
namespace {

using testing::Each;
using testing::Le;

class Tables : public testing::Test {
protected:
    Table table{{"ADDRESS", "NAME", "SERIAL"}};

    std::vector<std::size_t> lineWidths(const TextStyle& style) const
    {
        std::vector<std::size_t> widths;
        std::istringstream lines(table.text(style));
        for (std::string line; std::getline(lines, line);)
            widths.push_back(displayWidth(line));
        return widths;
    }
};

TEST_F(Tables, AreAsWideAsTheyNeedToBe)
{
    table.add({"10.0.0.1", "A printer with a long name", "S1"});
    EXPECT_EQ(table.text(), "ADDRESS   NAME                        SERIAL\n"
                            "10.0.0.1  A printer with a long name  S1\n");
    EXPECT_EQ(table.text({.width = 44}), table.text());
}

TEST_F(Tables, AreCutToTheWidthOfTheTerminal)
{
    table.add({"10.0.0.1", "A printer with a long name", "S1"});
    EXPECT_EQ(table.text({.width = 30}), "ADDRESS   NAME          SERIAL\n"
                                         "10.0.0.1  A printer w…  S1\n");
}

TEST_F(Tables, CutTheWidestColumnFirst)
{
    table.add({"10.0.0.1", "A printer with a long name", "0123456789012345"});
    EXPECT_EQ(table.text({.width = 44}), "ADDRESS   NAME              SERIAL\n"
                                         "10.0.0.1  A printer with …  0123456789012345\n");
    EXPECT_EQ(table.text({.width = 40}), "ADDRESS   NAME            SERIAL\n"
                                         "10.0.0.1  A printer wit…  0123456789012…\n");
}

TEST_F(Tables, KeepTheAddressAndEightColumnsOfTheRest)
{
    table.add({"192.168.100.100", "A printer with a long name", "0123456789012345"});
    EXPECT_EQ(table.text({.width = 10}), "ADDRESS          NAME      SERIAL\n"
                                         "192.168.100.100  A print…  0123456…\n");
}

TEST_F(Tables, CutUsefulColumnsLast)
{
    Table useful({"ADDRESS", "NAME", "SERIAL"}, {0, 8, 16});
    useful.add({"10.0.0.1", "A printer with a long name", "0123456789012345"});
    EXPECT_EQ(useful.text({.width = 40}), "ADDRESS   NAME          SERIAL\n"
                                          "10.0.0.1  A printer w…  0123456789012345\n");
    EXPECT_EQ(useful.text({.width = 34}), "ADDRESS   NAME      SERIAL\n"
                                          "10.0.0.1  A print…  0123456789012…\n");
}

TEST_F(Tables, CutWideCharactersWhole)
{
    table.add({"10.0.0.1", "会議室のプリンター", ""});
    table.add({"10.0.0.2", "会議室の大きいプリンター", "x"});
    for (std::size_t width = 30; width < 50; ++width)
        EXPECT_THAT(lineWidths({.width = width}), Each(Le(width))) << width;
    EXPECT_EQ(table.text({.width = 31}), "ADDRESS   NAME           SERIAL\n"
                                         "10.0.0.1  会議室のプリ…\n"
                                         "10.0.0.2  会議室の大き…  x\n");
}

TEST_F(Tables, MayHaveAColouredHeading)
{
    table.add({"10.0.0.1", "a", "b"});
    EXPECT_EQ(table.text({.colours = true}), "\x1b[1mADDRESS   NAME  SERIAL\x1b[0m\n10.0.0.1  a     b\n");
}

} // namespace
} // namespace Host
