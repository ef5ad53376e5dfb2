#include "engine/Time.h"

#include <windows.h>

namespace PrinterDiscoveryPlugin::Time {
namespace {

// The system counts from 1601, the interface from 1970.
constexpr std::int64_t ticksUntil1970 = 116'444'736'000'000'000;

} // namespace

std::int64_t systemTicks() noexcept
{
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return ((std::int64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime) - ticksUntil1970;
}

} // namespace PrinterDiscoveryPlugin::Time
