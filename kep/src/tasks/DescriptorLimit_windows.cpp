#include "tasks/DescriptorLimit.h"

namespace Kep {

// The system sets no such limit for a process.
void raiseDescriptorLimit() noexcept {}

} // namespace Kep
