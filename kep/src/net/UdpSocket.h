/// A connected UDP socket over IPv4.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Kep::Net {

/// Exchanges datagrams with one peer: the system drops those of others. One thread at a time.
class UdpSocket {
public:
    enum class Outcome {
        done,
        timeout, ///< nothing arrived in time
        closed   ///< the peer or the way to it is reported closed
    };

    /// `address` has its first octet in the most significant byte. Throws `GenericException` when the system has no
    /// socket to give. An address that cannot be reached shows when sending.
    UdpSocket(std::uint32_t address, std::uint16_t port);
    ~UdpSocket();
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    /// `done` also when the system drops the datagram, as any network may.
    Outcome send(std::span<const std::uint8_t> datagram);

    /// Waits for a datagram until `deadline` and puts it, cut to its size, into `buffer`; `size` is set when done.
    Outcome receive(std::span<std::uint8_t> buffer, std::chrono::steady_clock::time_point deadline, std::size_t& size);

private:
    const std::intptr_t handle_; // the system's
    bool reachable_ = false;
};

} // namespace Kep::Net
