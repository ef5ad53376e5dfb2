/// One printer that a run found.
#pragma once

#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// 8-bit texts as the network delivered them; any of them may be empty.
struct PrinterRecord {
    /// Dotted IPv4 address, as the sweep wrote it.
    std::string ip;
    /// The device's description.
    std::string name;
    /// Serial number.
    std::string sn;
    /// In the order found, each like 00-1B-A9-0C-33-7E.
    std::vector<std::string> mac;
    /// NetBIOS name, else DNS name.
    std::string hostname;
};

} // namespace PrinterDiscoveryPlugin
