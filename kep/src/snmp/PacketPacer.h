/// Bounds how many packets a second are sent.
#pragma once

#include <atomic>
#include <chrono>

namespace Kep::Snmp {

/// A token bucket in the form of a timetable: each packet is given the time at which its token is there. Packets are
/// served in the order in which they ask, and one that comes late takes nothing away from the others. The bucket
/// holds the tokens of 10 ms, at least one. Any thread; no lock.
class PacketPacer {
public:
    using Clock = std::chrono::steady_clock;

    /// When the packet that asks at `now` may be sent: a time not later than `now` is at once. `rate` in packets a
    /// second; 0 is no limit, and leaves no trace.
    Clock::time_point next(int rate, Clock::time_point now) noexcept;

private:
    std::atomic<Clock::rep> nextToken_{Clock::time_point::min().time_since_epoch().count()};
};

} // namespace Kep::Snmp
