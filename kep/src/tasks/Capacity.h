/// How many tasks run at once: what this machine can give, and what is asked of it.
#pragma once

#include "Kep/Host/Tasks.h"
#include "settings/HostSettings.h"

#include <cstddef>
#include <vector>

namespace Kep {

/// Most tasks that run at once, and what bounds them.
struct Capacity {
    std::size_t tasks;
    std::string_view resource; ///< for people: "open files", "memory", ...
};

/// What the parts of this machine allow the process, read anew. Parts that tell nothing are left out. Any thread.
std::vector<Capacity> machineBounds();

/// The narrowest of `bounds`, at least one task; without any, as many tasks as can be set. Any thread.
Capacity narrowest(const std::vector<Capacity>& bounds) noexcept;

/// The limit under `settings` on a machine of that capacity. Where none is set: as many tasks as keep the packet rate
/// up when no address answers, and 16,384 without a rate. Any thread.
Host::TaskLimit limitUnder(const HostSettings& settings, const Capacity& machine) noexcept;

} // namespace Kep
