#include "snmp/PacketPacer.h"

#include <algorithm>

namespace Kep::Snmp {

namespace {

using Duration = PacketPacer::Clock::duration;

constexpr Duration bucket = std::chrono::milliseconds(10);

} // namespace

PacketPacer::Clock::time_point PacketPacer::next(int rate, Clock::time_point now) noexcept
{
    if (rate == 0)
        return now;
    const Duration interval = Duration(std::chrono::seconds(1)) / rate;
    const Duration::rep oldest = (now - std::max(bucket - interval, Duration::zero())).time_since_epoch().count();
    Duration::rep seen = nextToken_.load();
    Duration::rep mine = 0;
    do {
        mine = std::max(seen, oldest);
    } while (!nextToken_.compare_exchange_weak(seen, mine + interval.count()));
    return Clock::time_point(Duration(mine));
}

} // namespace Kep::Snmp
