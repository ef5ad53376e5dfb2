/// Devices that tests build with snmpd.
#pragma once

#include "tests/network/harness/Program.h"
#include "tests/network/harness/Snmpd.h"

#include <string>

namespace NetworkTests {

/// What an agent holds, and the record that a sweep must give of it at an address; null when it is no printer.
struct Device {
    AgentData data;
    Document record;
};

/// A printer with everything: a description that JSON has to escape, two MAC addresses, a serial number.
Device fullPrinter(const std::string& address);

/// A printer in the second row of its table, with a physical address of 8 bytes and an empty one, an empty first serial
/// number and an INTEGER as the second.
Device secondRowPrinter(const std::string& address);

/// A printer of which nothing but its type can be read.
Device barePrinter(const std::string& address);

/// A printer with a Latin-1 byte in its description and only the last of the serial numbers.
Device latin1Printer(const std::string& address);

/// A machine whose device table holds a processor and a network interface.
Device server();

/// A printer in a column whose last arc only begins with that of the device types, and so passes for it.
Device printerInColumn20(const std::string& address);

/// A device without a device table.
Device tablelessDevice();

} // namespace NetworkTests
