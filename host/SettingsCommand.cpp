#include "host/Commands.h"

#include "Kep/Host/DataStore.h"
#include "Kep/Host/Settings.h"
#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/Files.h"
#include "host/PluginReply.h"
#include "host/Table.h"

#include <algorithm>
#include <exception>
#include <ostream>
#include <sstream>

namespace Host {

namespace {

using Kep::Host::Setting;

bool asJson(const std::optional<std::string>& format)
{
    if (format && *format != "table" && *format != "json")
        throw UsageError("--format: " + inQuotes(*format) + " is not known; table and json are accepted");
    return format == "json";
}

const Setting& settingOf(const std::string& key)
{
    const auto& all = Kep::Host::settings();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Setting& setting) { return setting.key == key; });
    if (found != all.end())
        return *found;
    std::string known;
    for (const Setting& setting : all)
        known += (known.empty() ? "" : ", ") + std::string(setting.key);
    throw UsageError(inQuotes(key) + " is no setting; there are " + known);
}

struct Value {
    std::string text;
    bool isDefault;
};

Value valueOf(const Kep::Host::DataStore& store, const Setting& setting)
{
    const auto stored = store.get(std::string(setting.key));
    return {stored.value_or(std::string(setting.defaultValue)), !stored};
}

JsonValue document(const Kep::Host::DataStore& store, const Setting& setting)
{
    const Value value = valueOf(store, setting);
    return {{"key", setting.key},           {"value", value.text},
            {"isDefault", value.isDefault}, {"default", setting.defaultValue},
            {"meaning", setting.meaning},   {"accepted", setting.accepted},
            {"effect", setting.effect}};
}

std::string listAsJson(const Kep::Host::DataStore& store)
{
    JsonValue all = JsonValue::array();
    for (const Setting& setting : Kep::Host::settings())
        all.push_back(document(store, setting));
    return all.dump(2, ' ', false, JsonValue::error_handler_t::replace) + '\n';
}

/// A line of the table for each setting, and under it what it means.
std::string listAsTable(const Kep::Host::DataStore& store, const TextStyle& style)
{
    Table table({"SETTING", "VALUE", "DEFAULT"});
    for (const Setting& setting : Kep::Host::settings()) {
        const Value value = valueOf(store, setting);
        table.add({std::string(setting.key), value.text, std::string(setting.defaultValue)});
    }
    std::istringstream lines(table.text(style));
    std::ostringstream text;
    std::string line;
    std::getline(lines, line);
    text << line << '\n';
    for (const Setting& setting : Kep::Host::settings()) {
        std::getline(lines, line);
        text << line << "\n    " << setting.meaning << "\n    Accepted: " << setting.accepted
             << "\n    Takes effect: " << setting.effect << '\n';
    }
    return text.str();
}

void set(Kep::Host::DataStore& store, const SettingsArguments& arguments)
{
    try {
        Kep::Host::checkSetting(settingOf(arguments.key).key, arguments.value);
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        throw UsageError(error.what());
    }
    if (arguments.dataStore.empty())
        makeDataStoreFolder();
    store.set(arguments.key, arguments.value);
}

Kep::Host::DataStore openStore(const std::string& option)
{
    std::string file = dataStoreFile(option);
    if (file.empty())
        throw Failure("there is no folder for the data store; --data-store names a file");
    return Kep::Host::DataStore(std::move(file));
}

} // namespace

ExitCode settings(const SettingsArguments& arguments, std::ostream& output, const TextStyle& style)
{
    using Action = SettingsArguments::Action;
    const bool json = asJson(arguments.format);
    if (arguments.action != Action::List)
        settingOf(arguments.key);
    Kep::Host::DataStore store = openStore(arguments.dataStore);
    switch (arguments.action) {
    case Action::List:
        output << (json ? listAsJson(store) : listAsTable(store, style));
        break;
    case Action::Get: {
        const Setting& setting = settingOf(arguments.key);
        output << (json ? document(store, setting).dump(2) : printable(valueOf(store, setting).text)) << '\n';
        break;
    }
    case Action::Set:
        set(store, arguments);
        break;
    case Action::Unset:
        store.unset(arguments.key);
        break;
    }
    if (!output.flush())
        throw Failure("cannot write to standard output");
    return ExitCode::Done;
}

} // namespace Host
