/// How many tasks run at once: what this machine can give, and what is asked of it.
#pragma once

#include "Kep/Host/Tasks.h"
#include "settings/HostSettings.h"

#include <cstddef>
#include <vector>

namespace Kep {

/// What one part of the machine allows.
struct CapacityBound {
    std::size_t tasks;
    std::string_view resource; ///< as in `Host::Capacity`
};

/// What the parts of this machine allow the process, read anew. Parts that tell nothing are left out. Any thread.
std::vector<CapacityBound> machineBounds();

/// The narrowest of `bounds`, at least one task; without any, as many tasks as can be set. Any thread.
Host::Capacity narrowest(const std::vector<CapacityBound>& bounds) noexcept;

/// How many tasks to run at once under `settings` on a machine that can run `most`. Where none are set: as many as
/// keep the packet rate up when no address answers, and 16,384 without a rate. Any thread.
std::size_t taskLimit(const HostSettings& settings, std::size_t most) noexcept;

} // namespace Kep
