#include "engine/Time.h"

#include <chrono>
#include <ratio>

namespace PrinterDiscoveryPlugin::Time {

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

std::int64_t systemTicks() noexcept
{
    return std::chrono::duration_cast<Ticks>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace PrinterDiscoveryPlugin::Time
