/// A UDP port on every address of 127.0.0.0/8 and on no other.
///
/// Requests from beyond the machine are never seen: the port is bound to the loopback interface where the system
/// permits, and in any case a datagram that came in elsewhere, or was sent to an address outside 127.0.0.0/8, is
/// dropped unanswered. Not synchronised: belongs to one thread.
#pragma once

#include "lab/Ipv4.h"
#include "lab/Oid.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace Lab {

class LoopbackSocket {
public:
    /// The address that a request was sent to, from which the answer comes, and where it came from.
    struct Ends {
        Address asked = 0;
        Address peer = 0;
        std::uint16_t peerPort = 0;
    };

    /// Writes an answer to the front of `out` and returns its size; 0 to stay silent.
    using Answer = std::function<std::size_t(ByteView request, const Ends& ends, std::span<std::uint8_t> out)>;

    struct Counts {
        std::uint64_t requests = 0;
        std::uint64_t answers = 0;
    };

    /// Opens the port; 0 lets the system choose a free one. Throws `std::system_error` when it cannot be had.
    explicit LoopbackSocket(std::uint16_t port);
    ~LoopbackSocket();

    [[nodiscard]] std::uint16_t port() const;

    /// Takes a batch of the datagrams that wait, without waiting for any, and sends the answers. Returns how many
    /// requests and answers that were. An answer that the system refuses to send is dropped. Throws
    /// `std::system_error` when nothing can be received any more.
    Counts exchange(const Answer& answer);

    /// Sends a datagram, to `ends.peer` from `ends.asked`. False when the system refuses it.
    bool send(ByteView datagram, const Ends& ends);

    /// As `send`, but from a port that is not this one.
    static bool sendFromOtherPort(ByteView datagram, const Ends& ends);

    /// How many datagrams the system has dropped because they came faster than they were taken.
    [[nodiscard]] std::uint64_t dropped() const;

    /// The system's handle, to wait on.
    [[nodiscard]] std::intptr_t handle() const;

private:
    class System;
    std::unique_ptr<System> _system;
};

} // namespace Lab
