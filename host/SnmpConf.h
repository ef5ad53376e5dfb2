/// Default credentials from the configuration files of the net-snmp tools.
#pragma once

#include "host/Credentials.h"

#include <string>
#include <string_view>

namespace Host {

/// What the text of a file at `path` says: defVersion, defCommunity, defSecurityName, defSecurityLevel, defAuthType,
/// defAuthPassphrase, defPrivType, defPrivPassphrase, defPassphrase (for both where the particular one is absent) and
/// defContext, in any case of letters, the last one of a kind. A value runs to the end of its line, or stands in
/// double quotes, in which a backslash takes the next character as it is. Lines for other programs than "snmp"
/// ("[snmpd]") and everything else are passed over. Throws nothing but `std::bad_alloc`.
Credentials parseSnmpConf(std::string_view text, const std::string& path);

/// What the user's file says, and below it the system's. Files that cannot be read say nothing.
Credentials snmpConfCredentials();

} // namespace Host
