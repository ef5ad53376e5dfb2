#include "tasks/HeldCode.h"

namespace Kep {

// Unloading a library runs its destructors first, and those wait for its tasks.
std::shared_ptr<const void> holdCode(const void* /*address*/)
{
    return nullptr;
}

} // namespace Kep
