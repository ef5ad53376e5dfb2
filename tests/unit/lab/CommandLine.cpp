#include "lab/Options.h"

#include <gmock/gmock.h>

#include <vector>

namespace Lab {
namespace {

class CommandLine : public testing::Test {
protected:
    static std::variant<Options, int> read(const std::vector<const char*>& arguments)
    {
        return readOptions({arguments.begin(), arguments.end()});
    }

    static Options good(const std::vector<const char*>& arguments) { return std::get<Options>(read(arguments)); }

    /// What is said on standard error about arguments that end with status 2.
    static std::string refusal(const std::vector<const char*>& arguments)
    {
        testing::internal::CaptureStderr();
        const auto result = read(arguments);
        std::string said = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(std::holds_alternative<int>(result) && std::get<int>(result) == 2);
        return said;
    }
};

TEST_F(CommandLine, WithoutArgumentsTheDemonstrationNetworkIsMeant)
{
    const Options options = good({});
    EXPECT_EQ(options.port, 1161);
    EXPECT_EQ(options.network, "127.77.0.0/24");
    EXPECT_EQ(options.community, "public");
    EXPECT_FALSE(options.devices || options.printers || options.planFile || options.profileFolder || options.idleExit);
    EXPECT_FALSE(options.verbatim || options.list || options.untilStandardInputCloses || options.statistics);
}

TEST_F(CommandLine, EachIsRead)
{
    const Options options = good({"--port", "161", "--network", "127.80.0.0/16", "--devices", "2000", "--printers",
                                  "500", "--community", "secret", "--profiles", "folder", "--verbatim", "--list",
                                  "--until-stdin-closes", "--stats", "--idle-exit", "30"});
    EXPECT_EQ(options.port, 161);
    EXPECT_EQ(options.network, "127.80.0.0/16");
    EXPECT_EQ(options.devices, 2000U);
    EXPECT_EQ(options.printers, 500U);
    EXPECT_EQ(options.community, "secret");
    EXPECT_EQ(options.profileFolder, "folder");
    EXPECT_EQ(options.idleExit, std::chrono::seconds(30));
    EXPECT_TRUE(options.verbatim && options.list && options.untilStandardInputCloses && options.statistics);
    EXPECT_EQ(good({"--plan", "file"}).planFile, "file");
}

TEST_F(CommandLine, WrongOnesAreNamed)
{
    using testing::HasSubstr;
    EXPECT_THAT(refusal({"--port", "65536"}), HasSubstr("--port"));
    EXPECT_THAT(refusal({"--port", "-1"}), HasSubstr("--port"));
    EXPECT_THAT(refusal({"--port", "snmp"}), HasSubstr("--port"));
    EXPECT_THAT(refusal({"--devices", "0"}), HasSubstr("--devices"));
    EXPECT_THAT(refusal({"--devices", "-5"}), HasSubstr("--devices"));
    EXPECT_THAT(refusal({"--printers", "5"}), HasSubstr("--devices"));
    EXPECT_THAT(refusal({"--idle-exit", "0"}), HasSubstr("--idle-exit"));
    EXPECT_THAT(refusal({"--frobnicate"}), HasSubstr("--frobnicate"));
    EXPECT_THAT(refusal({"stray"}), HasSubstr("stray"));
}

TEST_F(CommandLine, APlanLeavesNothingToSpread)
{
    using testing::HasSubstr;
    EXPECT_THAT(refusal({"--plan", "file", "--devices", "5"}), HasSubstr("--plan"));
    EXPECT_THAT(refusal({"--plan", "file", "--network", "127.0.0.0/8"}), HasSubstr("--plan"));
}

TEST_F(CommandLine, HelpIsNoFailure)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(std::get<int>(read({"--help"})), 0);
    EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("--until-stdin-closes"));
}

} // namespace
} // namespace Lab
