#include "host/Commands.h"
#include "host/Errors.h"
#include "tests/unit/host/TemporaryFolder.h"

#include "Kep/Host/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>
#include <string>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using Action = SettingsArguments::Action;

class SettingsCommands : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string store = folder.file("settings.db");

    std::string run(Action action, const std::string& key = "", const std::string& value = "",
                    const std::optional<std::string>& format = {})
    {
        std::ostringstream output;
        EXPECT_EQ(settings({action, key, value, store, format}, output, {}), ExitCode::Done);
        return output.str();
    }

    std::string refusal(Action action, const std::string& key, const std::string& value = "")
    {
        try {
            return run(action, key, value);
        } catch (const UsageError& error) {
            return error.what();
        }
    }
};

TEST_F(SettingsCommands, AnUnsetSettingHasItsDefault)
{
    EXPECT_EQ(run(Action::Get, "host.snmp.timeout"), "1\n");
    EXPECT_FALSE(std::filesystem::exists(store));
}

TEST_F(SettingsCommands, WhatIsSetIsKeptUntilItIsUnset)
{
    EXPECT_EQ(run(Action::Set, "host.snmp.timeout", "2.5"), "");
    EXPECT_EQ(run(Action::Get, "host.snmp.timeout"), "2.5\n");
    EXPECT_EQ(run(Action::Unset, "host.snmp.timeout"), "");
    EXPECT_EQ(run(Action::Get, "host.snmp.timeout"), "1\n");
    EXPECT_EQ(run(Action::Unset, "host.snmp.timeout"), "");
}

TEST_F(SettingsCommands, TheListShowsEverySettingWithValueDefaultAndMeaning)
{
    run(Action::Set, "host.snmp.timeout", "2.5");
    const std::string list = run(Action::List);
    for (const Kep::Host::Setting& setting : Kep::Host::settings())
        for (const std::string_view text :
             {setting.key, setting.defaultValue, setting.meaning, setting.accepted, setting.effect})
            EXPECT_THAT(list, HasSubstr(std::string(text)));
    EXPECT_THAT(list, HasSubstr("2.5"));
}

TEST_F(SettingsCommands, TheListAsJsonSaysTheSame)
{
    run(Action::Set, "host.snmp.timeout", "2.5");
    const auto list = nlohmann::json::parse(run(Action::List, "", "", "json"));
    ASSERT_EQ(list.size(), Kep::Host::settings().size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const bool changed = list[i]["key"] == "host.snmp.timeout";
        EXPECT_EQ(list[i]["key"], Kep::Host::settings()[i].key);
        EXPECT_EQ(list[i]["default"], Kep::Host::settings()[i].defaultValue);
        EXPECT_EQ(list[i]["isDefault"], !changed);
        EXPECT_EQ(list[i]["value"], changed ? "2.5" : std::string(Kep::Host::settings()[i].defaultValue));
    }
    EXPECT_EQ(nlohmann::json::parse(run(Action::Get, "host.snmp.timeout", "", "json"))["value"], "2.5");
}

TEST_F(SettingsCommands, UnknownKeysAreRefusedWithTheKnownOnes)
{
    for (const Action action : {Action::Get, Action::Set, Action::Unset})
        EXPECT_THAT(refusal(action, "host.unknown", "1"),
                    AllOf(HasSubstr("host.unknown"), HasSubstr("host.snmp.timeout")));
}

TEST_F(SettingsCommands, WrongValuesAreRefusedAndNothingIsKept)
{
    EXPECT_THAT(refusal(Action::Set, "host.snmp.timeout", "soon"), HasSubstr("host.snmp.timeout"));
    EXPECT_EQ(run(Action::Get, "host.snmp.timeout"), "1\n");
}

TEST_F(SettingsCommands, FormatsAreTableAndJson)
{
    std::ostringstream output;
    EXPECT_THROW(settings({Action::List, "", "", store, "csv"}, output, {}), UsageError);
}

TEST_F(SettingsCommands, AStoreThatIsNoneIsAFailure)
{
    folder.write("settings.db", "this is no database, whatever its name may say to the contrary");
    EXPECT_ANY_THROW(run(Action::Get, "host.snmp.timeout"));
}

} // namespace
} // namespace Host
