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

const Capacity& machineCapacity()
{
    static const Capacity capacity = [] {
        raiseDescriptorLimit();
        return narrowest(machineBounds());
    }();
    return capacity;
}

} // namespace

Capacity narrowest(const std::vector<Capacity>& bounds) noexcept
{
    Capacity capacity{.tasks = mostThatCanBeSet, .resource = {}};
    for (const Capacity& bound : bounds) {
        if (bound.tasks < capacity.tasks) {
            capacity = {.tasks = std::max<std::size_t>(bound.tasks, 1), .resource = bound.resource};
        }
    }
    return capacity;
}

Host::TaskLimit limitUnder(const HostSettings& settings, const Capacity& machine) noexcept
{
    if (!settings.taskLimit) {
        const std::size_t useful =
            settings.snmpRate == 0 ? mostChosen : neededFor(settings.snmpRate, settings.snmpTimeout);
        return {.tasks = std::min(useful, machine.tasks), .asked = 0, .loweredBy = {}};
    }
    const std::size_t asked = *settings.taskLimit;
    if (asked <= machine.tasks) {
        return {.tasks = asked, .asked = asked, .loweredBy = {}};
    }
    return {.tasks = machine.tasks, .asked = asked, .loweredBy = machine.resource};
}

Host::TaskLimit Host::taskLimit()
{
    return limitUnder(hostSettings(), machineCapacity());
}

} // namespace Kep
