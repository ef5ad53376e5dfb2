/// The traffic between a session and its agent: every packet of the engine is sent and received here.
#pragma once

#include "snmp/AwaitedSocket.h"

#include <functional>
#include <string>

namespace Kep::Snmp {

/// Used by one thread at a time. Failures throw `Exception`; a closed port is among them.
class Wire {
public:
    using Clock = std::chrono::steady_clock;
    using Reader = std::function<void(std::span<const unsigned char>)>;

    /// Connects to `port` of `address`, a dotted quad. Waits its turn when the system has no socket to give.
    Wire(const std::string& address, std::uint16_t port);

    /// Sends when the host's packet rate allows it, and sleeps until then.
    void send(std::span<const unsigned char> packet);

    /// How long `send` has slept in all: time that is nobody's but the host's own.
    Clock::duration held() const noexcept { return held_; }

    /// Waits for a datagram from the agent, at most until `deadline`, and hands it to `read`. False when none came. A
    /// passed deadline still takes what is already there.
    bool receive(Clock::time_point deadline, const Reader& read);

    /// Whether the network has reported that it does not reach the agent at the moment.
    bool reportedUnreachable() const noexcept { return socket_->reportedUnreachable(); }

    /// For messages to people: address and port.
    const std::string& peer() const noexcept { return peer_; }

private:
    std::string peer_;
    AwaitedSocket socket_;
    Clock::duration held_{};
};

} // namespace Kep::Snmp
