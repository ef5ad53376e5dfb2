/// How a run's work becomes tasks of the host's queue.
#pragma once

#include "Kep/Tasks/Task.h"
#include "documents/DiscoveryConfig.h"

#include <memory>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

class PdExecutor;

/// Stateless; any thread. The tasks hold `run` by plain pointer: it outlives them, because a run is destroyed only
/// when none of its tasks is pending.
class ITaskBinding {
public:
    virtual ~ITaskBinding() = default;

    /// A task that probes `address`.
    virtual std::shared_ptr<Kep::Tasks::Task> testIp(PdExecutor& run, const std::string& address) const = 0;

    /// A task that sweeps `ranges`.
    virtual std::shared_ptr<Kep::Tasks::Task> testIpRanges(PdExecutor& run,
                                                           const std::vector<IpRangeText>& ranges) const = 0;
};

} // namespace PrinterDiscoveryPlugin
