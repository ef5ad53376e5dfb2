/// Finds out over SNMP whether one host is a printer, and what it says of itself.
///
/// Any thread; takes no lock. Reads the identification settings in force, but the MAC address OIDs, which the caller
/// gives.
#pragma once

#include "Kep/Snmp/Profile.h"
#include "Kep/Snmp/Session.h"
#include "documents/PrinterRecord.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// The printer at the dotted quad `address`, or nothing if the host does not answer `profile` or is no printer. Fields
/// that cannot be read stay empty. Blocks its caller for as long as the host takes, retries and name look-ups
/// included. SNMP failures of the host and failing name look-ups are absorbed; everything else passes, a failure to
/// make the session included.
std::optional<PrinterRecord> probeHost(const std::string& address, const std::shared_ptr<Kep::Snmp::Profile>& profile,
                                       const std::vector<std::string>& macAddressOids);

/// Whether a row of the column of device types holds the type of a printer. An OID belongs to the column if its text
/// begins with the column's text. An agent that makes no progress, and a `Kep::Snmp::Exception`, end the walk with
/// false.
bool isPrinterByDeviceTable(Kep::Snmp::Session& session);

/// 6 bytes as upper-case hexadecimal pairs joined by "-": 00-1B-A9-0C-33-7E.
std::string formatMac(std::string_view bytes);

} // namespace PrinterDiscoveryPlugin
