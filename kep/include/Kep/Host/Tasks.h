/// What the host's task queue can do on this machine.
#pragma once

#include "Kep/Export.h"

#include <cstddef>
#include <string_view>

namespace Kep::Host {

struct Capacity {
    std::size_t tasks = 0;      ///< most tasks that run at once, at least 1
    std::string_view limitedBy; ///< what bounds them, for people: "open files", "memory", ...; empty for nothing
};

/// What this machine can give the queue, found out at the first call, which raises the process's limit of open files
/// as far as it may. A setting above it is lowered to it. Any thread.
KEP_API Capacity taskCapacity();

} // namespace Kep::Host
