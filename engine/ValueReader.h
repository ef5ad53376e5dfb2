/// Reads single values of an agent, patiently.
#pragma once

#include "Kep/Snmp/Session.h"

#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// Stores in `out`, as text, the first value that the agent has for one of `oids`, asked in order, and returns true;
/// false, with `out` as it was, when it has none.
///
/// A request that fails is made up to 3 times, 1000 ms apart; an empty text ends the attempts for its OID. Blocks its
/// caller meanwhile. Any thread that has `session` to itself; no lock. `Kep::Snmp::Exception` is absorbed; any other
/// exception passes, among them that of a value that has no text form.
bool getFirstValue(Kep::Snmp::Session& session, const std::vector<std::string>& oids, std::string& out);

} // namespace PrinterDiscoveryPlugin
