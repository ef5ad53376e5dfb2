/// The settings of a discovery run, as a request's "config" gives them.
///
/// Plain values and pure functions: any thread, no locks.
#pragma once

#include "Kep/Snmp/Profile.h"
#include "Kep/Variant.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// Two IPv4 addresses as texts, both inclusive, exactly as given: neither trimmed nor checked nor put in order.
struct IpRangeText {
    std::string from;
    std::string to;
};

struct DiscoveryConfig {
    /// Kept for the run; nothing acts on these three.
    bool usePing = false;
    std::int32_t pingTimeout = 500;
    std::int32_t snmpTimeout = 500;
    /// In the order of the request.
    std::vector<IpRangeText> includeRanges;
    std::vector<IpRangeText> excludeRanges;
    /// Shared by all copies of the configuration; nobody changes it.
    std::shared_ptr<Kep::Snmp::Profile> snmpProfile;
};

/// Reads "pingTimeout", "snmpTimeout", "usePing", "includeRanges", "excludeRanges" and "snmpProfile". A list that is
/// null or absent is empty; everything else must be there. Throws `Kep::GenericException` that names the member which
/// is missing or of the wrong kind.
DiscoveryConfig parseDiscoveryConfig(const Kep::Variant& config);

/// Reads "from" and "to". Throws as `parseDiscoveryConfig`.
IpRangeText parseIpRangeText(const Kep::Variant& range);

} // namespace PrinterDiscoveryPlugin
