/// The objects that tell one device from another: what a discovery reads, and what differs between two devices of a
/// kind.
#pragma once

#include "lab/Oid.h"

#include <array>

namespace Lab::WellKnown {

/// hrDeviceType, column of the device table, and its value for a printer (RFC 2790).
inline const Oid deviceTypeColumn{1, 3, 6, 1, 2, 1, 25, 3, 2, 1, 2};
inline const Oid devicePrinter{1, 3, 6, 1, 2, 1, 25, 3, 1, 5};

/// hrDeviceDescr of the table's row 1.
inline const Oid firstDeviceDescription{1, 3, 6, 1, 2, 1, 25, 3, 2, 1, 3, 1};

/// ifPhysAddress, column of the interface table (RFC 2863), and its first two rows.
inline const Oid physicalAddressColumn{1, 3, 6, 1, 2, 1, 2, 2, 1, 6};
inline const std::array<Oid, 2> firstPhysicalAddresses{Oid{1, 3, 6, 1, 2, 1, 2, 2, 1, 6, 1},
                                                       Oid{1, 3, 6, 1, 2, 1, 2, 2, 1, 6, 2}};

/// prtGeneralSerialNumber, column of the printers' table (RFC 3805).
inline const Oid serialNumberColumn{1, 3, 6, 1, 2, 1, 43, 5, 1, 1, 17};

/// Where serial numbers are found: prtGeneralSerialNumber of row 1, and two objects of makers that lack it.
inline const std::array<Oid, 3> serialNumbers{Oid{1, 3, 6, 1, 2, 1, 43, 5, 1, 1, 17, 1},
                                              Oid{1, 3, 6, 1, 4, 1, 1347, 43, 5, 1, 1, 28, 1},
                                              Oid{1, 3, 6, 1, 4, 1, 367, 3, 2, 1, 2, 1, 4, 0}};

} // namespace Lab::WellKnown
