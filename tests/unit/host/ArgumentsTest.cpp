#include "host/Arguments.h"

#include "host/DiscoverOptions.h"
#include "host/Errors.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace Host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

DiscoverArguments discover(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "discover");
    return std::get<DiscoverArguments>(parseCommandLine(arguments));
}

/// The options, with nothing on standard input, one local network and no default credentials.
DiscoverOptions optionsOf(const DiscoverArguments& arguments)
{
    std::istringstream input;
    return readDiscoverOptions(arguments, {}, {input, [] { return AddressRanges{{0x0A090800, 0x0A0908FF}}; }});
}

std::string refusal(const std::vector<std::string>& arguments)
{
    try {
        const auto line = parseCommandLine(arguments);
        if (const auto* command = std::get_if<DiscoverArguments>(&line))
            optionsOf(*command);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

std::string request(const std::vector<std::string>& arguments)
{
    const DiscoverOptions options = optionsOf(discover(arguments));
    return startDocument(options, options.profiles.at(0), "c");
}

TEST(Arguments, TargetsAndExcludesMayBeManyInAnyOrder)
{
    const auto arguments = discover({"10.0.0.1", "--exclude", "10.0.0.2", "10.0.0.3", "--exclude", "10.0.0.4"});
    EXPECT_THAT(arguments.targets.targets, ElementsAre("10.0.0.1", "10.0.0.3"));
    EXPECT_THAT(arguments.targets.excludes, ElementsAre("10.0.0.2", "10.0.0.4"));
}

TEST(Arguments, SnmpOptionsAreSpelledAsTheToolsSpellThem)
{
    const auto arguments =
        discover({"-v",  "3",  "-u",     "admin", "-l",  "authPriv", "-a",  "SHA", "-A", "pass a",  "-x",
                  "AES", "-X", "pass x", "-n",    "ctx", "-t",       "0.5", "-r",  "2",  "10.0.0.1"});
    EXPECT_EQ(arguments.snmp.version, "3");
    EXPECT_EQ(arguments.snmp.user, "admin");
    EXPECT_EQ(arguments.snmp.level, "authPriv");
    EXPECT_EQ(arguments.snmp.authProtocol, "SHA");
    EXPECT_EQ(arguments.snmp.authPassword, "pass a");
    EXPECT_EQ(arguments.snmp.privProtocol, "AES");
    EXPECT_EQ(arguments.snmp.privPassword, "pass x");
    EXPECT_EQ(arguments.snmp.context, "ctx");
    EXPECT_EQ(arguments.timeout, "0.5");
    EXPECT_EQ(arguments.retries, "2");
    EXPECT_THAT(arguments.targets.targets, ElementsAre("10.0.0.1"));
}

TEST(Arguments, ShortOptionsMayTouchTheirValues)
{
    const auto arguments = discover({"-v2c", "-cprivate", "10.0.0.1"});
    EXPECT_EQ(arguments.snmp.version, "2c");
    EXPECT_EQ(arguments.snmp.community, "private");
}

TEST(Arguments, ASecretIsGivenOnce)
{
    for (const auto& [option, fileOption] :
         {std::pair{"-c", "--community-file"}, {"-A", "--auth-password-file"}, {"-X", "--priv-password-file"}})
        EXPECT_THAT(refusal({"discover", "10.0.0.1", option, "x", fileOption, "f"}), HasSubstr(fileOption));
}

TEST(Arguments, SettingsCommandsTakeTheirKeyAndValue)
{
    const auto set = std::get<SettingsArguments>(
        parseCommandLine({"settings", "set", "host.snmp.timeout", "2", "--data-store", "f", "--format", "json"}));
    EXPECT_EQ(set.action, SettingsArguments::Action::Set);
    EXPECT_EQ(set.key, "host.snmp.timeout");
    EXPECT_EQ(set.value, "2");
    EXPECT_EQ(set.dataStore, "f");
    EXPECT_EQ(set.format, "json");
    using Action = SettingsArguments::Action;
    EXPECT_EQ(std::get<SettingsArguments>(parseCommandLine({"settings", "list"})).action, Action::List);
    EXPECT_EQ(std::get<SettingsArguments>(parseCommandLine({"settings", "get", "k"})).action, Action::Get);
    EXPECT_EQ(std::get<SettingsArguments>(parseCommandLine({"settings", "unset", "k"})).action, Action::Unset);
}

TEST(Arguments, ServeTakesStdio)
{
    EXPECT_TRUE(std::get<ServeArguments>(parseCommandLine({"serve", "--stdio"})).stdio);
}

TEST(Arguments, WhatIsWrongIsNamed)
{
    EXPECT_THAT(refusal({}), HasSubstr("discover, serve or settings"));
    EXPECT_THAT(refusal({"find"}), HasSubstr("find"));
    EXPECT_THAT(refusal({"discover"}), HasSubstr("TARGET"));
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--frobnicate"}), HasSubstr("--frobnicate"));
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "-c"}), HasSubstr("--community"));
    EXPECT_THAT(refusal({"discover", "10.0.0.300"}), HasSubstr("10.0.0.300"));
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--exclude", "nowhere"}), HasSubstr("nowhere"));
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--format", "xml"}),
                AllOf(HasSubstr("--format"), HasSubstr("xml"), HasSubstr("table, json and csv")));
    EXPECT_THAT(refusal({"settings"}), HasSubstr("list, get, set or unset"));
    EXPECT_THAT(refusal({"settings", "frob"}), HasSubstr("frob"));
    EXPECT_THAT(refusal({"settings", "set", "host.snmp.timeout"}), HasSubstr("VALUE"));
}

TEST(Arguments, HostSettingsOfARunAreChecked)
{
    for (const char* option : {"-t", "-r", "--rate", "--tasks"})
        for (const char* value : {"", "x", "-1", "1e99", "nan"})
            EXPECT_THAT(refusal({"discover", "10.0.0.1", std::string(option) + "=" + value}), HasSubstr(option))
                << value;
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--tasks", "0"}), HasSubstr("--tasks"));
    EXPECT_EQ(refusal({"discover", "10.0.0.1", "-t", "0.5", "-r", "0", "--rate", "0", "--tasks", "10"}), "accepted");
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--rate", "1000001"}), HasSubstr("from 0 to 1000000"));
}

std::size_t longestLine(const std::string& text)
{
    std::istringstream lines(text);
    std::size_t longest = 0;
    for (std::string line; std::getline(lines, line);)
        longest = std::max(longest, line.size());
    return longest;
}

TEST(Arguments, HelpFitsAScreenAndShowsThreeExamples)
{
    const std::string help = std::get<TextRequest>(parseCommandLine({"--help"})).text;
    EXPECT_LE(std::count(help.begin(), help.end(), '\n'), 24);
    EXPECT_LE(longestLine(help), 80U);
    std::size_t examples = 0;
    for (auto at = help.find("  printer-discovery "); at != std::string::npos;
         at = help.find("  printer-discovery ", at + 1))
        ++examples;
    EXPECT_EQ(examples, 3U);
}

TEST(Arguments, HelpOfACommandNamesAllItsOptionsWithin80Columns)
{
    std::string all;
    for (const char* command : {"discover", "serve", "settings"}) {
        const std::string help = std::get<TextRequest>(parseCommandLine({command, "--help"})).text;
        EXPECT_LE(longestLine(help), 80U);
        EXPECT_THAT(help, Not(HasSubstr("\n\n\n")));
        all += help;
    }
    all += std::get<TextRequest>(parseCommandLine({"--help"})).text;
    for (const std::string& option : allOptions())
        EXPECT_THAT(all, HasSubstr(option));
    EXPECT_THAT(all, HasSubstr("-iL"));
}

TEST(Arguments, EveryOptionIsDocumented)
{
    std::ifstream file(HOST_DOCUMENT);
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    const auto options = allOptions();
    ASSERT_GT(options.size(), 20U);
    for (const std::string& option : options)
        EXPECT_THAT(document, HasSubstr('`' + option + '`'));
}

TEST(Arguments, VersionIsShown)
{
    EXPECT_EQ(std::get<TextRequest>(parseCommandLine({"--version"})).text, "printer-discovery " PROJECT_VERSION "\n");
}

TEST(Arguments, ListsOfTargetsAreNamedAsScannersNameThem)
{
    const auto arguments = discover({"-iL", "list", "--target-file", "other", "--exclude-file", "skip", "-"});
    EXPECT_THAT(arguments.targets.files, ElementsAre("list", "other"));
    EXPECT_THAT(arguments.targets.excludeFiles, ElementsAre("skip"));
    EXPECT_THAT(arguments.targets.targets, ElementsAre("-"));
}

TEST(Arguments, FormsOfOutputThatExcludeEachOtherAreRefused)
{
    TemporaryFolder folder;
    const std::string earlier = folder.write("earlier.json", R"({"printers":[]})");
    for (const char* format : {"table", "csv"})
        EXPECT_THAT(refusal({"discover", "10.0.0.1", "--stream", "--format", format}), HasSubstr("--stream"));
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--diff", earlier, "--format", "csv"}), HasSubstr("--diff"));
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--dry-run", "--format", "csv"}), HasSubstr("--dry-run"));
    for (const char* format : {"table", "json"})
        EXPECT_EQ(refusal({"discover", "10.0.0.1", "--diff", earlier, "--dry-run", "--format", format}), "accepted");
    EXPECT_EQ(refusal({"discover", "10.0.0.1", "--stream", "--format", "json", "--diff", earlier}), "accepted");
}

TEST(Arguments, CredentialsComeFromAFileOrFromOptions)
{
    TemporaryFolder folder;
    const std::string file = folder.write("credentials", "[a]\ncommunity = one\n[b]\ncommunity = two\n");
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--credentials", file, "-c", "x"}),
                AllOf(HasSubstr("--credentials"), HasSubstr("-c")));
    const auto options = optionsOf(discover({"10.0.0.1", "--credentials", file, "--port", "1161"}));
    ASSERT_EQ(options.profiles.size(), 2U);
    EXPECT_EQ(options.profiles[1].dump(),
              R"({"snmpVersion":2,"snmpPort":1161,"communityRead":"two","communityWrite":""})");
}

TEST(Arguments, DefaultCredentialsStandInWhereOptionsGiveNone)
{
    std::istringstream input;
    Credentials defaults;
    defaults.community = Given{"from-file", "defCommunity"};
    const TargetSources sources{input, {}};
    EXPECT_EQ(readDiscoverOptions(discover({"10.0.0.1"}), defaults, sources).profiles[0]["communityRead"], "from-file");
    EXPECT_EQ(readDiscoverOptions(discover({"10.0.0.1", "-c", "x"}), defaults, sources).profiles[0]["communityRead"],
              "x");
}

TEST(StartDocument, HoldsWhatAStartRequestNeeds)
{
    EXPECT_EQ(request({"10.0.0.0/30", "10.0.1.7", "--exclude", "10.0.0.2", "--exclude", "255.255.255.255"}),
              R"({"cookie":"c","config":{"usePing":false,"pingTimeout":500,"snmpTimeout":500,)"
              R"("includeRanges":[{"from":"10.0.0.0","to":"10.0.0.1"},{"from":"10.0.0.3","to":"10.0.0.3"},)"
              R"({"from":"10.0.1.7","to":"10.0.1.7"}],"excludeRanges":[],)"
              R"("snmpProfile":{"snmpVersion":2,"snmpPort":161,"communityRead":"public","communityWrite":""}}})");
}

TEST(StartDocument, OverlappingTargetsAreOneRange)
{
    const auto ranges = optionsOf(discover({"10.0.0.5-10.0.0.9", "10.0.0.1-10.0.0.6", "10.0.0.10", "@local"})).ranges;
    EXPECT_THAT(ranges, ElementsAre(AddressRange{0x0A000001, 0x0A00000A}, AddressRange{0x0A090800, 0x0A0908FF}));
}

TEST(StartDocument, TextsThatAreNotUtf8AreRefused)
{
    EXPECT_THROW(request({"10.0.0.1", "-c", "caf\xE9"}), UsageError);
}

TEST(InitDocument, HoldsDataStoreAndSettings)
{
    const auto options =
        optionsOf(discover({"10.0.0.1", "-t", "0.5", "-r", "3", "--rate", "80", "--tasks", "64", "--no-names"}));
    EXPECT_EQ(initDocument("/x/settings.db", options.settings),
              R"({"dataStore":"/x/settings.db","settings":{"host.names.dns":"off","host.names.netbios":"off",)"
              R"("host.snmp.rate":"80","host.snmp.retries":"3","host.snmp.timeout":"0.5","host.tasks.limit":"64"}})");
    EXPECT_EQ(initDocument("", {}), R"({"settings":{}})");
}

TEST(DryRuns, PrintAListOfTargetsAndItsCount)
{
    EXPECT_EQ(dryRunText(optionsOf(discover({"10.0.0.1-10.0.0.9", "10.0.2.7", "--exclude", "10.0.0.4"}))),
              "10.0.0.1-10.0.0.3\n10.0.0.5-10.0.0.9\n10.0.2.7\n# 9 addresses to probe\n");
    EXPECT_EQ(dryRunText(optionsOf(discover({"10.0.0.7"}))), "10.0.0.7\n# 1 address to probe\n");
    EXPECT_EQ(dryRunText(optionsOf(discover({"10.0.0.7", "--exclude", "10.0.0.7"}))), "# 0 addresses to probe\n");
}

TEST(DryRuns, AreADocumentInJson)
{
    EXPECT_EQ(dryRunText(optionsOf(discover({"10.0.0.0/24", "--format", "json"}))),
              "{\"ranges\":[{\"from\":\"10.0.0.0\",\"to\":\"10.0.0.255\"}],\"addresses\":254,\"credentials\":1}\n");
}

TEST(DryRuns, PrintedListsReadTheSameAgain)
{
    const DiscoverArguments arguments = discover({"10.0.0-3.1-9,200", "10.9.0.0/20", "--exclude", "10.9.3.0/24"});
    const AddressRanges ranges = optionsOf(arguments).ranges;
    std::istringstream input(dryRunText(optionsOf(arguments)));
    EXPECT_EQ(readDiscoverOptions(discover({"-"}), {}, {input, {}}).ranges, ranges);
}

TEST(CountText, SaysHowOftenAddressesAreProbed)
{
    EXPECT_EQ(countText(254, 1), "254 addresses to probe");
    EXPECT_EQ(countText(1, 3), "1 address to probe, with each of 3 credentials");
}

} // namespace
} // namespace Host
