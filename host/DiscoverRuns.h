/// Runs over the same addresses one after the other, each with credentials of its own, and one result of them all.
#pragma once

#include "host/RunFollower.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Host {

struct RunStart {
    std::string document; ///< of the start request
    std::string cookie;   ///< the one that stands in it, different for each run
};

/// Follows the runs and shows the result so far of all of them; a run is started when the one before has finished, and
/// none any more when the user interrupts. `addresses` are those that one run probes. A printer that several runs find
/// is listed once, where it was found first, as the run describes it that gives most details (texts that are not
/// empty); of equal ones the first. Keeps the references while it runs. Throws as `RunFollower::follow` does.
RunResult followRuns(IPluginCalls& plugin, IPace& pace, IProgress& progress, const std::vector<RunStart>& starts,
                     std::uint64_t addresses);

} // namespace Host
