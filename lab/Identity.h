/// What a discovery is expected to report of a device, so that tests and benchmarks can compare.
#pragma once

#include "lab/Device.h"

namespace Lab {

struct Identity {
    /// The device table (hrDeviceTable, RFC 2790) has a row of the printer type.
    bool isPrinter = false;
    /// The description of the table's row 1, empty when there is none.
    std::string name;
    /// The physical addresses of 6 bytes among those of interfaces 1 and 2, as "00-1B-A9-0C-33-7E".
    std::vector<std::string> mac;
    /// The first serial number that is not empty: prtGeneralSerialNumber.1, then the two makers' own objects.
    std::string serialNumber;
};

bool isPrinter(const Profile& profile);
Identity identityOf(const Device& device);

/// One line of JSON (without its end): "ip", "profile", "printer", "hostile" for a device that is, and for a printer
/// "name", "mac" and "sn": what a hostile one would report if it were honest. A byte that is not part of valid UTF-8
/// stands as the Latin-1 character of its number.
std::string identityLine(const Device& device);

} // namespace Lab
