#include "tasks/DescriptorLimit.h"

#include <sys/resource.h>

namespace Kep {

void raiseDescriptorLimit() noexcept
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

} // namespace Kep
