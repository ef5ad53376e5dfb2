/// What the host's task queue can do on this machine.
#pragma once

#include "Kep/Export.h"

#include <cstddef>
#include <string_view>

namespace Kep::Host {

/// How many tasks run at once at most.
struct TaskLimit {
    std::size_t tasks = 0;      ///< at least 1
    std::size_t asked = 0;      ///< what the settings in force ask for; 0 when they leave it to the host
    std::string_view loweredBy; ///< why `tasks` is below `asked`: what the machine is short of, for people; else empty
};

/// The limit under the settings in force, on this machine as it was at the first call, which raises the process's
/// limit of open files as far as it may. Any thread.
KEP_API TaskLimit taskLimit();

} // namespace Kep::Host
