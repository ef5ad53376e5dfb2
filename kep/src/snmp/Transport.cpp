#include "snmp/Transport.h"

#include <algorithm>
#include <exception>

namespace Kep::Snmp {

namespace {

constexpr int standInDescriptor = 0;     // never read from or written to; the library only looks it up in a set
constexpr std::size_t maxPacket = 65507; // a UDP datagram over IPv4

struct MemoryTransport : netsnmp_transport {
    PacketPort* port;
};

int takeOutgoing(netsnmp_transport* transport, const void* packet, int size, void** /*unused*/, int* /*unused*/)
try {
    const auto* bytes = static_cast<const unsigned char*>(packet);
    static_cast<MemoryTransport*>(transport)->port->outgoing.assign(bytes, bytes + size);
    return size;
} catch (const std::exception&) {
    return -1;
}

int giveIncoming(netsnmp_transport* transport, void* buffer, int size, void** /*unused*/, int* /*unused*/)
{
    const auto incoming = static_cast<MemoryTransport*>(transport)->port->incoming;
    if (size < 0 || incoming.size() > static_cast<std::size_t>(size))
        return -1;
    std::ranges::copy(incoming, static_cast<unsigned char*>(buffer));
    return static_cast<int>(incoming.size());
}

int closeNothing(netsnmp_transport* /*unused*/)
{
    return 0;
}

} // namespace

netsnmp_transport* makeTransport(PacketPort& port)
{
    MemoryTransport transport{};
    transport.domain = netsnmpUDPDomain;
    transport.domain_length = static_cast<int>(netsnmpUDPDomain_len);
    transport.sock = standInDescriptor;
    transport.msgMaxSize = maxPacket;
    transport.f_send = takeOutgoing;
    transport.f_recv = giveIncoming;
    transport.f_close = closeNothing;
    transport.port = &port;
    return static_cast<MemoryTransport*>(netsnmp_memdup(&transport, sizeof transport));
}

netsnmp_large_fd_set* readyTransports()
{
    static netsnmp_large_fd_set set = [] {
        netsnmp_large_fd_set made{};
        netsnmp_large_fd_set_init(&made, FD_SETSIZE);
        return made;
    }();
    NETSNMP_LARGE_FD_SET(standInDescriptor, &set); // the library clears it when it reads
    return &set;
}

} // namespace Kep::Snmp
