/// SNMP credentials, wherever they come from, and the profile that a start request has of them.
#pragma once

#include "host/PluginReply.h"

#include <optional>
#include <string>

namespace Host {

/// A value as it was written.
struct Given {
    std::string value;
    std::string by; ///< what gave it, for messages: "-a", or "defAuthType of /etc/snmp/snmp.conf"
    std::string sharedFile =
        {}; ///< of a secret: the file it is from if others have access to that; it is not used then
};

struct Credentials {
    std::optional<Given> version, community, user, level, authProtocol, authPassword, privProtocol, privPassword,
        context;
};

/// How the user gives what is missing or does not fit, for messages.
struct CredentialNames {
    std::string place;    ///< put in front of every message; may be empty
    std::string version2; ///< "-v 2c"
    std::string version3; ///< "-v 3"
    std::string user;     ///< "-u"
    std::string authProtocol;
    std::string authPassword;
    std::string privProtocol;
    std::string privPassword;
};

/// `first`, and where it has nothing, `second`.
Credentials overlaid(const Credentials& first, const Credentials& second);

/// The member "snmpProfile" of a start request. `given` is what the user asks for: a value for which version or level
/// have no use is refused. `defaults` stand in where `given` has nothing and there is a use. Without any of them the
/// version is 2c, the community "public", and the level follows from the protocols. Throws `UsageError` that names
/// what is wrong or missing and says what is accepted; it never repeats a secret.
JsonValue snmpProfile(const Credentials& given, const Credentials& defaults, const CredentialNames& names, int port);

} // namespace Host
