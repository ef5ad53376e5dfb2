#include "tasks/SleeperTable.h"

namespace Kep {

// The system need not be told.
void makeRoomForSleepers() noexcept {}

} // namespace Kep
