/// SNMP credentials as the net-snmp tools spell them on their command lines.
#pragma once

#include "host/Credentials.h"

#include <optional>
#include <string>
#include <vector>

namespace Host {

/// The options as they were written; absent ones empty.
struct SnmpArguments {
    std::optional<std::string> version, community, communityFile, user, level, authProtocol, authPassword,
        authPasswordFile, privProtocol, privPassword, privPasswordFile, context, port;
};

/// What the options say, secrets read from their files. Throws `UsageError` as `readSecretFile` does.
Credentials credentialsOf(const SnmpArguments& arguments);

/// The secrets that stand on the command line itself.
std::vector<std::string> secretsOf(const SnmpArguments& arguments);

/// The first option of `arguments` that says something of credentials, if any: "-c".
std::optional<std::string> firstCredentialOption(const SnmpArguments& arguments);

/// The port of `--port`, by default 161. Throws `UsageError` when it is none.
int portOf(const SnmpArguments& arguments);

/// Reads the three environment variables that docs/host.md names.
Credentials environmentCredentials();

/// How the options are called.
const CredentialNames& optionNames();

} // namespace Host
