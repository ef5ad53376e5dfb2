#include "host/DiscoverOptions.h"

#include "Kep/Host/Settings.h"
#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/Targets.h"

#include <exception>
#include <optional>

namespace Host {

namespace {

// Read from every request, and without effect: no host is pinged, and the time-out is a host setting.
constexpr int UnusedTimeout = 500;

JsonValue rangeDocument(const AddressRange& range)
{
    return {{"from", addressText(range.from)}, {"to", addressText(range.to)}};
}

JsonValue includeRanges(const std::vector<std::string>& targets)
{
    JsonValue ranges = JsonValue::array();
    for (const std::string& target : targets)
        ranges.push_back(rangeDocument(parseTarget(target)));
    return ranges;
}

JsonValue excludeRanges(const std::vector<std::string>& excludes)
{
    JsonValue ranges = JsonValue::array();
    for (const std::string& exclude : excludes)
        if (const auto range = parseExclude(exclude))
            ranges.push_back(rangeDocument(*range));
    return ranges;
}

Format formatOf(const std::optional<std::string>& name)
{
    if (!name || *name == "table")
        return Format::Table;
    if (*name == "json")
        return Format::Json;
    if (*name == "csv")
        return Format::Csv;
    throw UsageError("--format: " + inQuotes(*name) + " is not known; table, json and csv are accepted");
}

/// Enters what an option says in place of a host setting.
void overrideBy(std::map<std::string, std::string>& settings, const char* option, const char* key,
                const std::optional<std::string>& value)
{
    if (!value)
        return;
    try {
        Kep::Host::checkSetting(key, *value);
    } catch (const std::exception& error) {
        throw UsageError(std::string(option) + ": " + error.what());
    }
    settings[key] = *value;
}

std::map<std::string, std::string> settingsOf(const DiscoverArguments& arguments)
{
    std::map<std::string, std::string> settings;
    overrideBy(settings, "-t", "host.snmp.timeout", arguments.timeout);
    overrideBy(settings, "-r", "host.snmp.retries", arguments.retries);
    overrideBy(settings, "--tasks", "host.tasks.limit", arguments.tasks);
    for (const char* key : {"host.names.netbios", "host.names.dns"})
        overrideBy(settings, "--no-names", key, arguments.noNames ? std::optional<std::string>("off") : std::nullopt);
    return settings;
}

std::vector<std::string> secretsOf(const JsonValue& profile)
{
    std::vector<std::string> secrets;
    for (const char* key : {"communityRead", "authPwd", "privacyPwd"})
        if (profile.contains(key))
            secrets.push_back(profile.at(key).get<std::string>());
    return secrets;
}

} // namespace

DiscoverOptions readDiscoverOptions(const DiscoverArguments& arguments, const SnmpEnvironment& environment)
{
    DiscoverOptions options;
    options.config = {{"usePing", false}, {"pingTimeout", UnusedTimeout}, {"snmpTimeout", UnusedTimeout}};
    options.config["includeRanges"] = includeRanges(arguments.targets);
    options.config["excludeRanges"] = excludeRanges(arguments.excludes);
    options.config["snmpProfile"] = snmpProfile(arguments.snmp, environment);
    options.settings = settingsOf(arguments);
    options.format = formatOf(arguments.format);
    options.secrets = secretsOf(options.config["snmpProfile"]);
    return options;
}

std::string startDocument(const JsonValue& config, const std::string& cookie)
{
    try {
        return JsonValue{{"cookie", cookie}, {"config", config}}.dump();
    } catch (const JsonValue::type_error&) {
        throw UsageError("community, user, context and passwords have to be UTF-8 texts");
    }
}

std::string initDocument(const std::string& dataStore, const std::map<std::string, std::string>& settings)
{
    JsonValue document = JsonValue::object();
    if (!dataStore.empty())
        document["dataStore"] = dataStore;
    document["settings"] = settings;
    return document.dump();
}

} // namespace Host
