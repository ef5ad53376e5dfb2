#include "tasks/Capacity.h"

#include "tasks/DescriptorLimit.h"

#include <algorithm>
#include <chrono>

namespace Kep {
namespace {

constexpr std::size_t mostThatCanBeSet = 65536;
constexpr std::size_t mostChosen = 16384;
constexpr std::size_t leastForRate = 256;

// Tasks that keep `rate` up, a task sending once in a time-out; half as many again stand ready for those that are busy
// with names or waiting for their turn.
std::size_t neededFor(int rate, std::chrono::milliseconds timeout) noexcept
{
    const auto inTimeout = static_cast<std::size_t>(rate) * static_cast<std::size_t>(timeout.count()) / 1000;
    return std::clamp(inTimeout + inTimeout / 2, leastForRate, mostChosen);
}

} // namespace

Host::Capacity narrowest(const std::vector<CapacityBound>& bounds) noexcept
{
    Host::Capacity capacity{.tasks = mostThatCanBeSet, .limitedBy = {}};
    for (const CapacityBound& bound : bounds) {
        if (bound.tasks < capacity.tasks) {
            capacity = {.tasks = std::max<std::size_t>(bound.tasks, 1), .limitedBy = bound.resource};
        }
    }
    return capacity;
}

std::size_t taskLimit(const HostSettings& settings, std::size_t most) noexcept
{
    const std::size_t unpaced =
        settings.snmpRate == 0 ? mostChosen : neededFor(settings.snmpRate, settings.snmpTimeout);
    return std::min(settings.taskLimit.value_or(unpaced), most);
}

Host::Capacity Host::taskCapacity()
{
    static const Host::Capacity capacity = [] {
        raiseDescriptorLimit();
        return narrowest(machineBounds());
    }();
    return capacity;
}

} // namespace Kep
