/// The name of a host.
#pragma once

#include <string>

namespace PrinterDiscoveryPlugin {

/// The NetBIOS name of the host at the dotted quad `address`; if it has none, its DNS name, unless that is the address
/// text itself; otherwise empty. A look-up that throws a `std::exception` counts as having found nothing. Blocks its
/// caller. Any thread; no lock.
std::string findHostName(const std::string& address);

} // namespace PrinterDiscoveryPlugin
