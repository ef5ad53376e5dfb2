/// The library's way to the network, which ends in memory: the traffic itself is not the library's.
#pragma once

#include "snmp/Library.h"

#include <span>
#include <vector>

namespace Kep::Snmp {

/// Where the library's messages go to and come from. Guarded by `libraryMutex` while the library is at work.
struct PacketPort {
    std::vector<unsigned char> outgoing;     ///< the message that the library sent last
    std::span<const unsigned char> incoming; ///< the message that it reads next
};

/// A transport that hands `port`'s packets over, or null when memory is short. The library owns it from then on;
/// `port` outlives it.
netsnmp_transport* makeTransport(PacketPort& port) KEP_REQUIRES(libraryMutex);

/// A descriptor set that holds the transports' stand-in descriptor: what `snmp_sess_read2` asks for. The same one in
/// every call.
netsnmp_large_fd_set* readyTransports() KEP_REQUIRES(libraryMutex);

} // namespace Kep::Snmp
