/// A connected UDP socket.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <system_error>

namespace Kep::Net {

/// Talks to one address and port; the system drops what others send, and tells when that port is closed. Used by one
/// thread at a time. Failures are thrown as `std::system_error`; a closed port is `std::errc::connection_refused`.
class UdpSocket {
public:
    /// Connects to `port` of `address`, a number whose most significant byte is the first octet.
    UdpSocket(std::uint32_t address, std::uint16_t port);
    ~UdpSocket();
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    /// Hands a datagram to the system. One that finds the system's buffers full is lost, as it may be on the way.
    void send(std::span<const unsigned char> packet);

    /// Sleeps until there is something to receive, also a failure; false when `deadline` passed first.
    bool waitReadable(std::chrono::steady_clock::time_point deadline);

    /// Takes one datagram into `buffer`, cut to its size, and gives its length; nothing when there is none.
    std::optional<std::size_t> receive(std::span<unsigned char> buffer);

    /// Whether the network has reported that it does not reach the address at the moment, which is no failure (soft
    /// errors: RFC 1122, section 4.1.3.3). Not all systems tell.
    bool reportedUnreachable() const noexcept { return unreachable_; }

private:
    bool takeSoftErrors();

    std::intptr_t handle_;
    bool unreachable_ = false;
};

/// Whether a socket was not opened for want of a descriptor, a local port or memory: others will give theirs back.
bool isShortage(const std::error_code& error);

} // namespace Kep::Net
