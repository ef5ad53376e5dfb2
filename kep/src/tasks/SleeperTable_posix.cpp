#include "tasks/SleeperTable.h"

#include <sys/prctl.h>

namespace Kep {
namespace {

// Linux 6.16 and later keep the futexes of a process in a hash table of its own, which by itself grows with the number
// of processors and not of threads. Older headers do not know these numbers, and older kernels refuse them.
constexpr int setFutexHash = 78;
constexpr unsigned long setSlots = 1;
constexpr unsigned long slots = 8192;

} // namespace

void makeRoomForSleepers() noexcept
{
    prctl(setFutexHash, setSlots, slots, 0UL, 0UL); // NOLINT(cppcoreguidelines-pro-type-vararg): the system's interface
}

} // namespace Kep
