/// The object identifiers by which a device is recognised and read, and the group under which work is queued.
#pragma once

#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// OIDs are dotted texts with a leading dot; the order of the lists is the order in which the probe uses them.
struct IdentificationSettings {
    /// hrDeviceType, the column of device types (RFC 2790).
    std::string oidDeviceType = ".1.3.6.1.2.1.25.3.2.1.2";
    /// Device types that count as a printer: hrDevicePrinter (RFC 2790).
    std::vector<std::string> oidDeviceTypePrinter = {".1.3.6.1.2.1.25.3.1.5"};
    /// hrDeviceDescr of the first device (RFC 2790).
    std::string oidDeviceDescr = ".1.3.6.1.2.1.25.3.2.1.3.1";
    /// ifPhysAddress of interfaces 1 and 2 (RFC 2863).
    std::vector<std::string> macAddressOids = {".1.3.6.1.2.1.2.2.1.6.1", ".1.3.6.1.2.1.2.2.1.6.2"};
    /// prtGeneralSerialNumber (RFC 3805) and the objects of two vendors whose devices leave it empty.
    std::vector<std::string> serialNumberOids = {".1.3.6.1.2.1.43.5.1.1.17.1", ".1.3.6.1.4.1.1347.43.5.1.1.28.1",
                                                 ".1.3.6.1.4.1.367.3.2.1.2.1.4.0"};
    /// Name under which a run's tasks are queued.
    std::string discoveryTaskGroup = "networkDiscovery";
};

/// The one set of the process. No lock guards it: it is written only while the service starts, before there are runs,
/// and read by runs. Lives until the library's static objects end.
IdentificationSettings& identificationSettings();

} // namespace PrinterDiscoveryPlugin
