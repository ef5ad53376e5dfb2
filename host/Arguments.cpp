#include "host/Arguments.h"

#include "host/Errors.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <sstream>

namespace Host {

namespace {

constexpr const char* Examples = R"(Examples:
  printer-discovery discover 10.0.0.0/24
  printer-discovery discover 10.0.0-3.1-254 --exclude 10.0.1.0/24 --format csv
  printer-discovery discover @local -v 3 -u admin -l authPriv -a SHA -x AES
    with the passwords in PRINTER_DISCOVERY_AUTH_PASSWORD and ..._PRIV_PASSWORD)";

constexpr const char* CommonHeading = "Options";

/// The parser with the records that it fills.
struct Parser {
    CLI::App app{"Finds the printers of a network over SNMP.", "printer-discovery"};
    DiscoverArguments discover;
    ServeArguments serve;
    SettingsArguments settings;
    CLI::App* discoverCommand = nullptr;
    CLI::App* serveCommand = nullptr;
    CLI::App* settingsCommand = nullptr;
};

/// An option with the name that its value has in the help, under one of the help's headings.
template <class Value>
CLI::Option* add(CLI::App& command, const char* heading, const char* names, Value& value, const char* valueName,
                 const char* text)
{
    return command.add_option(names, value, text)->option_text(valueName)->group(heading);
}

void addFileOptions(CLI::App& command, const char* heading, std::string& dataStore)
{
    add(command, heading, "--data-store", dataStore, "FILE", "Settings file, if not the user's own");
}

void addPluginOption(CLI::App& command, const char* heading, std::string& plugin)
{
    add(command, heading, "--plugin", plugin, "PATH", "Plug-in library to load");
}

void addTargetOptions(CLI::App& command, TargetArguments& arguments)
{
    constexpr const char* heading = "Targets";
    command
        .add_option("TARGET", arguments.targets,
                    "Several may be given, also joined by commas:\n"
                    "10.0.0.7  10.0.0.1-10.0.0.99  10.0.0.0/24\n"
                    "10.0.0-3.1-254  @local (this machine's networks)\n"
                    "- (a list on standard input)")
        ->option_text("...");
    const auto addMany = [&](const char* name, std::vector<std::string>& values, const char* value, const char* text) {
        add(command, heading, name, values, value, text)->allow_extra_args(false);
    };
    addMany("--target-file", arguments.files, "FILE", "List of targets (also -iL FILE)");
    addMany("--exclude", arguments.excludes, "TARGET", "Leave these addresses out");
    addMany("--exclude-file", arguments.excludeFiles, "FILE", "List of addresses to leave out");
}

void addCommunityOptions(CLI::App& command, SnmpArguments& snmp, std::optional<std::string>& credentials)
{
    constexpr const char* heading = "SNMP";
    add(command, heading, "-v,--snmp-version", snmp.version, "1|2c|3", "Version (default: 2c)");
    auto* community =
        add(command, heading, "-c,--community", snmp.community, "COMMUNITY", "Community (default: public)");
    add(command, heading, "--community-file", snmp.communityFile, "FILE", "File that holds it")->excludes(community);
    add(command, heading, "--port", snmp.port, "PORT", "UDP port of the devices (default: 161)");
    add(command, heading, "--credentials", credentials, "FILE", "Several credentials, tried one after the other");
}

void addUserOptions(CLI::App& command, SnmpArguments& snmp)
{
    constexpr const char* heading = "SNMP version 3";
    add(command, heading, "-u,--user", snmp.user, "USER", "User name");
    add(command, heading, "-l,--level", snmp.level, "LEVEL",
        "noAuthNoPriv, authNoPriv or authPriv\n(default: from -a and -x)");
    add(command, heading, "-a,--auth-protocol", snmp.authProtocol, "MD5|SHA", "Authentication");
    auto* auth = add(command, heading, "-A,--auth-password", snmp.authPassword, "PASSWORD", "Its password");
    add(command, heading, "--auth-password-file", snmp.authPasswordFile, "FILE", "File that holds it")->excludes(auth);
    add(command, heading, "-x,--priv-protocol", snmp.privProtocol, "CIPHER",
        "DES, AES, AES-192 or AES-256; AES-192-C and\nAES-256-C as Cisco devices have them");
    auto* priv = add(command, heading, "-X,--priv-password", snmp.privPassword, "PASSWORD", "Its password");
    add(command, heading, "--priv-password-file", snmp.privPasswordFile, "FILE", "File that holds it")->excludes(priv);
    add(command, heading, "-n,--context", snmp.context, "CONTEXT", "Context name");
}

void addRunOptions(CLI::App& command, DiscoverArguments& arguments)
{
    constexpr const char* heading = "Run";
    add(command, heading, "-t,--timeout", arguments.timeout, "SECONDS", "Time to wait for each answer");
    add(command, heading, "-r,--retries", arguments.retries, "RETRIES", "Times to ask again");
    add(command, heading, "--rate", arguments.rate, "N", "SNMP packets a second, at most; 0: any number");
    add(command, heading, "--tasks", arguments.tasks, "N", "Addresses to probe at once, at most");
    command.add_flag("--no-names", arguments.noNames, "Look no host names up")->group(heading);
    command.add_flag("--dry-run", arguments.dryRun, "Print what would be swept; send nothing")->group(heading);
    addFileOptions(command, heading, arguments.dataStore);
    addPluginOption(command, heading, arguments.plugin);
}

void addOutputOptions(CLI::App& command, DiscoverArguments& arguments)
{
    constexpr const char* heading = "Output";
    add(command, heading, "--format", arguments.format, "FORMAT", "table, json or csv (default: table)");
    command.add_flag("--stream", arguments.stream, "A line of JSON for each printer when it is found")->group(heading);
    add(command, heading, "--diff", arguments.diff, "FILE", "Compare with an earlier result in json");
    add(command, heading, "--outcomes", arguments.outcomes, "FILE", "Write what became of each address (.csv, .jsonl)");
    command.add_flag("-q,--quiet", arguments.quiet, "Neither counts, progress nor advice")->group(heading);
}

void addDiscover(Parser& parser)
{
    CLI::App& command = *parser.app.add_subcommand("discover", "Sweep addresses and print the printers among them");
    parser.discoverCommand = &command;
    addTargetOptions(command, parser.discover.targets);
    addCommunityOptions(command, parser.discover.snmp, parser.discover.credentials);
    addUserOptions(command, parser.discover.snmp);
    addRunOptions(command, parser.discover);
    addOutputOptions(command, parser.discover);
}

void addServe(Parser& parser)
{
    CLI::App& command = *parser.app.add_subcommand("serve", "Offer the plug-in's operations to another program");
    parser.serveCommand = &command;
    command.footer("");
    auto* stdio = command.add_flag("--stdio", parser.serve.stdio, "JSON-RPC 2.0 on standard input and output");
    auto* http = add(command, CommonHeading, "--http", parser.serve.http, "ADDRESS:PORT",
                     "Web console and JSON-RPC 2.0 over HTTP");
    http->excludes(stdio);
    stdio->option_text(" "); // else the help would show what it excludes
    add(command, CommonHeading, "--token-file", parser.serve.tokenFile, "FILE", "Secret that HTTP clients have to know")
        ->needs(http);
    add(command, CommonHeading, "--host-name", parser.serve.hostNames, "NAME", "Further name of this host in URLs")
        ->allow_extra_args(false)
        ->needs(http);
    addFileOptions(command, CommonHeading, parser.serve.dataStore);
    addPluginOption(command, CommonHeading, parser.serve.plugin);
}

void addSettings(Parser& parser)
{
    CLI::App& command = *parser.app.add_subcommand("settings", "Show and change what is set for good");
    parser.settingsCommand = &command;
    command.footer("");
    SettingsArguments& arguments = parser.settings;
    command.require_subcommand(0, 1);
    command.add_option("--format", arguments.format, "table or json (default: table)")->option_text("FORMAT");
    addFileOptions(command, CommonHeading, arguments.dataStore);
    const auto addAction = [&](const char* name, const char* text, SettingsArguments::Action action) {
        CLI::App* subcommand = command.add_subcommand(name, text);
        subcommand->fallthrough();
        subcommand->callback([&arguments, action] { arguments.action = action; });
        return subcommand;
    };
    addAction("list", "All settings with their values", SettingsArguments::Action::List);
    for (CLI::App* subcommand : {addAction("get", "One setting's value", SettingsArguments::Action::Get),
                                 addAction("set", "Change a setting", SettingsArguments::Action::Set),
                                 addAction("unset", "Go back to the default", SettingsArguments::Action::Unset)})
        subcommand->add_option("KEY", arguments.key, "Name of the setting; list shows them")
            ->required()
            ->option_text(" ");
    command.get_subcommand("set")->add_option("VALUE", arguments.value, "Its new value")->required()->option_text(" ");
}

std::unique_ptr<Parser> makeParser()
{
    auto parser = std::make_unique<Parser>();
    parser->app.set_version_flag("-V,--version", "printer-discovery " HOST_VERSION);
    parser->app.require_subcommand(0, 1);
    parser->app.footer(Examples);
    addDiscover(*parser);
    addServe(*parser);
    addSettings(*parser);
    return parser;
}

CommandLine recordOf(const Parser& parser)
{
    if (parser.discoverCommand->parsed())
        return parser.discover;
    if (parser.serveCommand->parsed())
        return parser.serve;
    return parser.settings;
}

/// The parser's own test would come before its report of a word that it does not know.
void requireCommand(const CLI::App& app, const char* message)
{
    if (app.get_subcommands().empty())
        throw UsageError(message);
}

std::string optionName(const std::string& argument)
{
    return argument.substr(0, argument.starts_with("--") ? argument.find('=') : 2);
}

/// Names the options that are not known, without what is joined to them or follows: a name that is mistyped may stand
/// before a secret.
std::string unknownOptions(const CLI::App& app)
{
    std::string names;
    for (const std::string& argument : app.remaining(true))
        if (argument.starts_with('-'))
            names += (names.empty() ? "" : " ") + optionName(argument);
    return names;
}

void collectOptions(const CLI::App& app, std::vector<std::string>& names)
{
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    for (const CLI::App* inner : app.get_subcommands([](const CLI::App*) { return true; }))
        collectOptions(*inner, names);
}

/// The parser puts two empty lines between the headings of its help.
std::string withSingleGaps(std::string text)
{
    for (auto gap = text.find("\n\n\n"); gap != std::string::npos; gap = text.find("\n\n\n", gap))
        text.erase(gap, 1);
    return text;
}

} // namespace

CommandLine parseCommandLine(std::vector<std::string> arguments)
{
    const auto parser = makeParser();
    std::replace(arguments.begin(), arguments.end(), std::string("-iL"), std::string("--target-file"));
    std::reverse(arguments.begin(), arguments.end()); // the order in which the parser takes them
    try {
        parser->app.parse(std::move(arguments));
    } catch (const CLI::ExtrasError& error) {
        const std::string unknown = unknownOptions(parser->app);
        throw UsageError(unknown.empty() ? error.what() : "no such option: " + unknown);
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        std::ostringstream ignored;
        if (parser->app.exit(error, text, ignored) == 0)
            return TextRequest{withSingleGaps(text.str())};
        throw UsageError(error.what());
    }
    requireCommand(parser->app, "a command is needed: discover, serve or settings");
    if (parser->settingsCommand->parsed())
        requireCommand(*parser->settingsCommand, "settings needs to know what to do: list, get, set or unset");
    return recordOf(*parser);
}

std::vector<std::string> allOptions()
{
    std::vector<std::string> names;
    collectOptions(makeParser()->app, names);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace Host
