#include "host/TaskLimitNote.h"

#include "Kep/Host/Tasks.h"

#include <ostream>

namespace Host {

void noteLoweredTaskLimit(std::ostream& output)
{
    const Kep::Host::TaskLimit limit = Kep::Host::taskLimit();
    if (!limit.loweredBy.empty())
        output << "note: " << limit.asked << " tasks at once are more than this machine can give; " << limit.tasks
               << " are used (limited by its " << limit.loweredBy << ")\n";
}

} // namespace Host
