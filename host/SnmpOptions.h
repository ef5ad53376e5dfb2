/// SNMP credentials as the net-snmp tools spell them on their command lines.
#pragma once

#include "host/PluginReply.h"

#include <optional>
#include <string>

namespace Host {

/// The options as they were written; absent ones empty.
struct SnmpArguments {
    std::optional<std::string> version, community, communityFile, user, level, authProtocol, authPassword,
        authPasswordFile, privProtocol, privPassword, privPasswordFile, context, port;
};

/// Secrets that the environment offers.
struct SnmpEnvironment {
    std::optional<std::string> community, authPassword, privPassword;
};

/// Reads the three environment variables that docs/host.md names.
SnmpEnvironment snmpEnvironment();

/// The member "snmpProfile" of a start request. Throws `UsageError` that names the option and says what is accepted.
JsonValue snmpProfile(const SnmpArguments& arguments, const SnmpEnvironment& environment);

} // namespace Host
