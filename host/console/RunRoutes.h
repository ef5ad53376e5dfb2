/// What clients do with runs: /api/targets and /api/runs.
#pragma once

#include "host/console/ConsoleRuns.h"
#include "host/console/Routes.h"
#include "host/console/Slots.h"

namespace Host {

/// Adds the routes. The references outlive them. `instance` names this start of the console. A stop that is waited for
/// takes one of `slots`.
void addRunRoutes(Routes& routes, const std::string& instance, ConsoleRuns& runs, Slots& slots,
                  const LocalNetworks& localNetworks);

} // namespace Host
