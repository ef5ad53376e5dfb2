#include "Resources.h"

#include "Allocations.h"
#include "tests/unit/support/ProcessUse.h"

namespace Faults {

Resources Resources::now()
{
    return {liveAllocations(), TestSupport::allocatedBytes(), TestSupport::threadCount(),
            TestSupport::openDescriptors()};
}

} // namespace Faults
