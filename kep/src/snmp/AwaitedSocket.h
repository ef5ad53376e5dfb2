/// A socket for which sessions wait when the system has none to give.
#pragma once

#include "net/UdpSocket.h"

#include <cstdint>
#include <optional>

namespace Kep::Snmp {

/// Used by one thread at a time.
class AwaitedSocket {
public:
    /// As that of `Net::UdpSocket`, but waits as long as the process or the system has no descriptor, local port or
    /// memory for it.
    AwaitedSocket(std::uint32_t address, std::uint16_t port);
    ~AwaitedSocket();
    AwaitedSocket(const AwaitedSocket&) = delete;
    AwaitedSocket& operator=(const AwaitedSocket&) = delete;

    Net::UdpSocket* operator->() noexcept { return &*socket_; }
    const Net::UdpSocket* operator->() const noexcept { return &*socket_; }

private:
    bool tryOpen(std::uint32_t address, std::uint16_t port);

    std::optional<Net::UdpSocket> socket_; ///< there from construction to destruction
};

} // namespace Kep::Snmp
