/// The host settings in force, as the framework's own parts read them.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace Kep {

/// Defaults are those that `Host::settings` lists.
struct HostSettings {
    std::chrono::milliseconds snmpTimeout{1000}; ///< of one try ("host.snmp.timeout", in seconds)
    int snmpRetries = 1;                         ///< tries after the first ("host.snmp.retries")
    int snmpRate = 5000;                         ///< packets a second, 0 for no limit ("host.snmp.rate")
    std::optional<std::size_t> taskLimit;        ///< tasks that run at once, or chosen ("host.tasks.limit")
    bool netbiosNames = true;                    ///< "host.names.netbios"
    bool dnsNames = true;                        ///< "host.names.dns"
};

/// The settings in force: a copy. Any thread; takes a short lock of its own.
HostSettings hostSettings();

/// Replaces the settings in force by the defaults with `values` (data-store keys and texts) over them. Keys that do
/// not begin with "host." are ignored. Throws `GenericException` as `Host::checkSetting` does and changes nothing
/// then. Any thread.
void applyHostSettings(const std::map<std::string, std::string>& values);

} // namespace Kep
