/// Starts, follows and stops runs under the cookies of their callers.
#pragma once

#include "documents/DiscoveryConfig.h"
#include "documents/DiscoveryStatus.h"
#include "registry/CookieTable.h"
#include "registry/PdExecutorRegistry.h"

#include <cstdint>
#include <string>

namespace PrinterDiscoveryPlugin {

/// Two references and no state: cheap to make for a single call; both objects outlive it. Any thread. Takes the cookie
/// table's mutex before the registry's before a run's. Exceptions of the registry and of a sweep pass, as does the
/// `std::system_error` of a lock that fails.
class RunControl {
public:
    RunControl(PdExecutorRegistry& registry, CookieTable& cookies) : registry_(registry), cookies_(cookies) {}

    /// Makes a run and sweeps its first slice on the calling thread. Returns its id. When the sweep throws, the run
    /// stays in the registry.
    std::int32_t startRun(const DiscoveryConfig& config);

    /// `startRun`, and only then lets `cookie` name the run. An earlier run of that name goes on without one. True.
    bool startDiscovery(const std::string& cookie, const DiscoveryConfig& config);

    /// Removes timed-out runs, does what `startDiscovery` does, and waits for the run. True.
    bool startDiscoveryBlocking(const std::string& cookie, const DiscoveryConfig& config);

    /// Removes timed-out runs, then the run of `cookie`, which is not told to stop: unless others share it, waits until
    /// its pending tasks have run. Holds the table's mutex throughout. Whether the cookie was known.
    bool stopDiscovery(const std::string& cookie);

    /// The run's status with the printers from `firstIdx` on (negative counts as 0) and the cookie. A status that says
    /// finished takes the cookie from the table. An unknown cookie gives a finished status without anything in it.
    /// Holds the table's mutex throughout.
    DiscoveryStatus getStatus(const std::string& cookie, std::int32_t firstIdx);

    /// Looks at the run now and every 2 s until it has no pending tasks or no cookie names it any more. Holds no lock
    /// between the looks, and a share of the run throughout. An unknown run is not waited for.
    void waitForRun(std::int32_t id);

    /// The run's snapshot; for an unknown run a finished status without anything in it.
    DiscoveryStatus statusOf(std::int32_t id);

private:
    bool isNamed(std::int32_t id);
    std::int32_t startNamedRun(const std::string& cookie, const DiscoveryConfig& config);

    PdExecutorRegistry& registry_;
    CookieTable& cookies_;
};

} // namespace PrinterDiscoveryPlugin
