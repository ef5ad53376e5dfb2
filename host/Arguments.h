/// The command line as it was written, a record for each command. Texts are as the user gave them, unchecked.
#pragma once

#include "host/SnmpOptions.h"
#include "host/TargetPlan.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Host {

struct DiscoverArguments {
    TargetArguments targets;
    SnmpArguments snmp;
    std::optional<std::string> credentials, timeout, retries, rate, tasks, format, diff, outcomes;
    bool noNames = false, stream = false, quiet = false, dryRun = false;
    std::string dataStore, plugin;
};

struct ServeArguments {
    bool stdio = false;
    std::optional<std::string> http, tokenFile;
    std::vector<std::string> hostNames;
    std::string dataStore, plugin;
};

struct SettingsArguments {
    enum class Action { List, Get, Set, Unset };
    Action action = Action::List;
    std::string key, value, dataStore;
    std::optional<std::string> format;
};

/// What --help and --version ask for.
struct TextRequest {
    std::string text;
};

using CommandLine = std::variant<TextRequest, DiscoverArguments, ServeArguments, SettingsArguments>;

/// Reads the arguments that follow the program's name. Throws `UsageError`.
CommandLine parseCommandLine(std::vector<std::string> arguments);

/// Every option of every command, by its long name, for checks of the documentation.
std::vector<std::string> allOptions();

} // namespace Host
