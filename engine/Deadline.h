/// The end of a wait on a clock that counts nanoseconds.
#pragma once

#include <cstdint>
#include <limits>

namespace PrinterDiscoveryPlugin::Time {

/// `interval`, which is not negative, after `now`; the largest signed 64-bit value if that lies beyond it.
constexpr std::int64_t saturatingDeadline(std::int64_t now, std::int64_t interval) noexcept
{
    constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max();
    return now > latest - interval ? latest : now + interval;
}

} // namespace PrinterDiscoveryPlugin::Time
