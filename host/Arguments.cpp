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
  printer-discovery discover 10.0.0.1-10.0.3.254 --exclude 10.0.1.0/24 --format csv > printers.csv
  printer-discovery discover 10.0.0.0/24 -v 3 -u admin -l authPriv -a SHA -x AES
    with the passwords in PRINTER_DISCOVERY_AUTH_PASSWORD and PRINTER_DISCOVERY_PRIV_PASSWORD)";

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

void addFileOptions(CLI::App& command, std::string& dataStore)
{
    command.add_option("--data-store", dataStore, "Settings file (default: in the user's configuration folder)")
        ->option_text("FILE");
}

void addPluginOption(CLI::App& command, std::string& plugin)
{
    command.add_option("--plugin", plugin, "Plug-in library to load")->option_text("PATH");
}

void addTargetOptions(CLI::App& command, DiscoverArguments& arguments)
{
    command.add_option("TARGET", arguments.targets, "10.0.0.7, 10.0.0.1-10.0.0.99 or 10.0.0.0/24")
        ->required()
        ->option_text("...");
    command.add_option("--exclude", arguments.excludes, "Leave these addresses out; may be repeated")
        ->option_text("TARGET")
        ->allow_extra_args(false);
}

void addCommunityOptions(CLI::App& command, SnmpArguments& snmp)
{
    CLI::Option_group& group = *command.add_option_group("SNMP");
    group.add_option("-v,--snmp-version", snmp.version, "Version of SNMP (default: 2c)")->option_text("1|2c|3");
    auto* community =
        group.add_option("-c,--community", snmp.community, "Community (default: public)")->option_text("COMMUNITY");
    group.add_option("--community-file", snmp.communityFile, "File that holds it")
        ->option_text("FILE")
        ->excludes(community);
    group.add_option("--port", snmp.port, "UDP port of the devices (default: 161)")->option_text("PORT");
}

void addUserOptions(CLI::App& command, SnmpArguments& snmp)
{
    CLI::Option_group& group = *command.add_option_group("SNMP version 3");
    group.add_option("-u,--user", snmp.user, "User name")->option_text("USER");
    group.add_option("-l,--level", snmp.level, "noAuthNoPriv, authNoPriv or authPriv (default: from -a and -x)")
        ->option_text("LEVEL");
    group.add_option("-a,--auth-protocol", snmp.authProtocol, "Authentication")->option_text("MD5|SHA");
    auto* auth = group.add_option("-A,--auth-password", snmp.authPassword, "Its password")->option_text("PASSWORD");
    group.add_option("--auth-password-file", snmp.authPasswordFile, "File that holds it")
        ->option_text("FILE")
        ->excludes(auth);
    group
        .add_option("-x,--priv-protocol", snmp.privProtocol,
                    "DES, AES, AES-192 or AES-256; AES-192-C and AES-256-C as Cisco devices have them")
        ->option_text("CIPHER");
    auto* priv = group.add_option("-X,--priv-password", snmp.privPassword, "Its password")->option_text("PASSWORD");
    group.add_option("--priv-password-file", snmp.privPasswordFile, "File that holds it")
        ->option_text("FILE")
        ->excludes(priv);
    group.add_option("-n,--context", snmp.context, "Context name")->option_text("CONTEXT");
}

void addRunOptions(CLI::App& command, DiscoverArguments& arguments)
{
    CLI::Option_group& group = *command.add_option_group("Run");
    group.add_option("-t,--timeout", arguments.timeout, "Time to wait for each answer")->option_text("SECONDS");
    group.add_option("-r,--retries", arguments.retries, "Times to ask again")->option_text("RETRIES");
    group.add_option("--tasks", arguments.tasks, "Addresses to probe at once, at most")->option_text("N");
    group.add_flag("--no-names", arguments.noNames, "Look no host names up");
    group.add_option("--format", arguments.format, "table, json or csv (default: table)")->option_text("FORMAT");
    addFileOptions(group, arguments.dataStore);
    addPluginOption(group, arguments.plugin);
}

void addDiscover(Parser& parser)
{
    CLI::App& command = *parser.app.add_subcommand("discover", "Sweep addresses and print the printers among them");
    parser.discoverCommand = &command;
    addTargetOptions(command, parser.discover);
    addCommunityOptions(command, parser.discover.snmp);
    addUserOptions(command, parser.discover.snmp);
    addRunOptions(command, parser.discover);
}

void addServe(Parser& parser)
{
    CLI::App& command = *parser.app.add_subcommand("serve", "Offer the plug-in's operations to another program");
    parser.serveCommand = &command;
    command.footer("");
    command.add_flag("--stdio", parser.serve.stdio, "JSON-RPC 2.0 on standard input and output, one message a line");
    addFileOptions(command, parser.serve.dataStore);
    addPluginOption(command, parser.serve.plugin);
}

void addSettings(Parser& parser)
{
    CLI::App& command = *parser.app.add_subcommand("settings", "Show and change what is set for good");
    parser.settingsCommand = &command;
    command.footer("");
    SettingsArguments& arguments = parser.settings;
    command.require_subcommand(0, 1);
    command.add_option("--format", arguments.format, "table or json (default: table)")->option_text("FORMAT");
    addFileOptions(command, arguments.dataStore);
    const auto add = [&](const char* name, const char* text, SettingsArguments::Action action) {
        CLI::App* subcommand = command.add_subcommand(name, text);
        subcommand->fallthrough();
        subcommand->callback([&arguments, action] { arguments.action = action; });
        return subcommand;
    };
    add("list", "All settings with their values", SettingsArguments::Action::List);
    for (CLI::App* subcommand : {add("get", "One setting's value", SettingsArguments::Action::Get),
                                 add("set", "Change a setting", SettingsArguments::Action::Set),
                                 add("unset", "Go back to the default", SettingsArguments::Action::Unset)})
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

void collectOptions(const CLI::App& app, std::vector<std::string>& names)
{
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    for (const CLI::App* inner : app.get_subcommands([](const CLI::App*) { return true; }))
        collectOptions(*inner, names);
}

} // namespace

CommandLine parseCommandLine(std::vector<std::string> arguments)
{
    const auto parser = makeParser();
    std::reverse(arguments.begin(), arguments.end()); // the order in which the parser takes them
    try {
        parser->app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        std::ostringstream ignored;
        if (parser->app.exit(error, text, ignored) == 0)
            return TextRequest{text.str()};
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
