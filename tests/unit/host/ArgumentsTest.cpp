#include "host/Arguments.h"

#include "host/DiscoverOptions.h"
#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

DiscoverArguments discover(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "discover");
    return std::get<DiscoverArguments>(parseCommandLine(arguments));
}

std::string refusal(const std::vector<std::string>& arguments)
{
    try {
        const auto line = parseCommandLine(arguments);
        if (const auto* command = std::get_if<DiscoverArguments>(&line))
            readDiscoverOptions(*command, {});
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

std::string request(const std::vector<std::string>& arguments)
{
    return startDocument(readDiscoverOptions(discover(arguments), {}).config, "c");
}

TEST(Arguments, TargetsAndExcludesMayBeManyInAnyOrder)
{
    const auto arguments = discover({"10.0.0.1", "--exclude", "10.0.0.2", "10.0.0.3", "--exclude", "10.0.0.4"});
    EXPECT_THAT(arguments.targets, ElementsAre("10.0.0.1", "10.0.0.3"));
    EXPECT_THAT(arguments.excludes, ElementsAre("10.0.0.2", "10.0.0.4"));
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
    EXPECT_THAT(arguments.targets, ElementsAre("10.0.0.1"));
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
    for (const char* option : {"-t", "-r", "--tasks"})
        for (const char* value : {"", "x", "-1", "1e99", "nan"})
            EXPECT_THAT(refusal({"discover", "10.0.0.1", std::string(option) + "=" + value}), HasSubstr(option))
                << value;
    EXPECT_THAT(refusal({"discover", "10.0.0.1", "--tasks", "0"}), HasSubstr("--tasks"));
    EXPECT_EQ(refusal({"discover", "10.0.0.1", "-t", "0.5", "-r", "0", "--tasks", "10"}), "accepted");
}

TEST(Arguments, HelpFitsAScreenAndShowsThreeExamples)
{
    const std::string help = std::get<TextRequest>(parseCommandLine({"--help"})).text;
    EXPECT_LE(std::count(help.begin(), help.end(), '\n'), 24);
    std::size_t examples = 0;
    for (auto at = help.find("  printer-discovery "); at != std::string::npos;
         at = help.find("  printer-discovery ", at + 1))
        ++examples;
    EXPECT_EQ(examples, 3U);
}

TEST(Arguments, HelpOfACommandNamesAllItsOptions)
{
    const std::string help = std::get<TextRequest>(parseCommandLine({"discover", "--help"})).text;
    for (const char* option : {"TARGET",
                               "--exclude",
                               "-v,",
                               "-c,",
                               "--community-file",
                               "-u,",
                               "-l,",
                               "-a,",
                               "-A,",
                               "--auth-password-file",
                               "-x,",
                               "-X,",
                               "--priv-password-file",
                               "-n,",
                               "--port",
                               "-t,",
                               "-r,",
                               "--tasks",
                               "--no-names",
                               "--format",
                               "--data-store",
                               "--plugin"})
        EXPECT_THAT(help, HasSubstr(option));
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
    EXPECT_THAT(std::get<TextRequest>(parseCommandLine({"--version"})).text,
                testing::MatchesRegex("printer-discovery [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(StartDocument, HoldsWhatAStartRequestNeeds)
{
    EXPECT_EQ(request({"10.0.0.0/30", "10.0.1.7", "--exclude", "10.0.0.2", "--exclude", "255.255.255.255"}),
              R"({"cookie":"c","config":{"usePing":false,"pingTimeout":500,"snmpTimeout":500,)"
              R"("includeRanges":[{"from":"10.0.0.0","to":"10.0.0.3"},{"from":"10.0.1.7","to":"10.0.1.7"}],)"
              R"("excludeRanges":[{"from":"10.0.0.2","to":"10.0.0.2"}],)"
              R"("snmpProfile":{"snmpVersion":2,"snmpPort":161,"communityRead":"public","communityWrite":""}}})");
}

TEST(StartDocument, TextsThatAreNotUtf8AreRefused)
{
    EXPECT_THROW(request({"10.0.0.1", "-c", "caf\xE9"}), UsageError);
}

TEST(InitDocument, HoldsDataStoreAndSettings)
{
    const auto options =
        readDiscoverOptions(discover({"10.0.0.1", "-t", "0.5", "-r", "3", "--tasks", "64", "--no-names"}), {});
    EXPECT_EQ(initDocument("/x/settings.db", options.settings),
              R"({"dataStore":"/x/settings.db","settings":{"host.names.dns":"off","host.names.netbios":"off",)"
              R"("host.snmp.retries":"3","host.snmp.timeout":"0.5","host.tasks.limit":"64"}})");
    EXPECT_EQ(initDocument("", {}), R"({"settings":{}})");
}

TEST(DiscoverOptions, KnowTheirSecrets)
{
    const auto options = readDiscoverOptions(
        discover({"10.0.0.1", "-v3", "-uadmin", "-lauthPriv", "-aSHA", "-Aauthentic", "-xAES", "-Xprivately"}), {});
    EXPECT_THAT(options.secrets, testing::UnorderedElementsAre("authentic", "privately"));
}

} // namespace
} // namespace Host
