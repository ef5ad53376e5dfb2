#include "host/DiscoverOptions.h"

#include "Kep/Host/Settings.h"
#include "host/CredentialsFile.h"
#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/OutcomeFormats.h"

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

JsonValue rangesDocument(const AddressRanges& ranges)
{
    JsonValue document = JsonValue::array();
    for (const AddressRange& range : ranges)
        document.push_back(rangeDocument(range));
    return document;
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
    overrideBy(settings, "--rate", "host.snmp.rate", arguments.rate);
    overrideBy(settings, "--tasks", "host.tasks.limit", arguments.tasks);
    for (const char* key : {"host.names.netbios", "host.names.dns"})
        overrideBy(settings, "--no-names", key, arguments.noNames ? std::optional<std::string>("off") : std::nullopt);
    return settings;
}

std::vector<JsonValue> profilesOf(const DiscoverArguments& arguments, const Credentials& defaults)
{
    const int port = portOf(arguments.snmp);
    if (!arguments.credentials)
        return {snmpProfile(credentialsOf(arguments.snmp), defaults, optionNames(), port)};
    if (const auto option = firstCredentialOption(arguments.snmp))
        throw UsageError("--credentials and " + *option + ": the file gives the credentials, or the options do");
    return readCredentialsFile(*arguments.credentials, port);
}

/// Refuses what the chosen form of the result has no place for.
void requireFormat(const DiscoverArguments& arguments, Format format)
{
    if (arguments.stream && arguments.format && format != Format::Json)
        throw UsageError("--stream writes lines of JSON; with it, --format can only be json");
    if (format == Format::Csv && arguments.diff)
        throw UsageError("--diff: csv has no place for a comparison; --format table and json have");
    if (format == Format::Csv && arguments.dryRun)
        throw UsageError(
            "--dry-run: what would be swept is no table of printers; --format table and json are accepted");
}

Format resultFormat(const DiscoverArguments& arguments)
{
    const Format format = formatOf(arguments.format);
    requireFormat(arguments, format);
    return arguments.stream ? Format::Json : format;
}

} // namespace

DiscoverOptions readDiscoverOptions(const DiscoverArguments& arguments, const Credentials& defaults,
                                    const TargetSources& sources)
{
    DiscoverOptions options;
    options.format = resultFormat(arguments);
    options.stream = arguments.stream;
    options.quiet = arguments.quiet;
    options.dryRun = arguments.dryRun;
    options.outcomes = arguments.outcomes;
    if (options.outcomes)
        outcomeFormatOf(*options.outcomes, OutcomesOption);
    options.settings = settingsOf(arguments);
    options.profiles = profilesOf(arguments, defaults);
    if (arguments.diff)
        options.earlier = readEarlierResult(*arguments.diff);
    options.ranges = planTargets(arguments.targets, sources);
    return options;
}

std::string startDocument(const DiscoverOptions& options, const JsonValue& profile, const std::string& cookie)
{
    const JsonValue config = {{"usePing", false},
                              {"pingTimeout", UnusedTimeout},
                              {"snmpTimeout", UnusedTimeout},
                              {"includeRanges", rangesDocument(options.ranges)},
                              {"excludeRanges", JsonValue::array()},
                              {"snmpProfile", profile}};
    try {
        return JsonValue{{"cookie", cookie}, {"config", config}}.dump();
    } catch (const JsonValue::type_error&) {
        throw UsageError("community, user, context and passwords have to be UTF-8 texts");
    }
}

std::string countText(std::uint64_t addresses, std::size_t credentials)
{
    std::string text = std::to_string(addresses) + (addresses == 1 ? " address" : " addresses") + " to probe";
    if (credentials > 1)
        text += ", with each of " + std::to_string(credentials) + " credentials";
    return text;
}

std::string dryRunText(const DiscoverOptions& options)
{
    const std::uint64_t addresses = countProbed(options.ranges);
    if (options.format == Format::Json)
        return jsonLine({{"ranges", rangesDocument(options.ranges)},
                         {"addresses", addresses},
                         {"credentials", options.profiles.size()}});
    std::string text;
    for (const AddressRange& range : options.ranges)
        text += rangeText(range) + '\n';
    return text + "# " + countText(addresses, options.profiles.size()) + '\n';
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
