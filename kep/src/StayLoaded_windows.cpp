// The framework's threads park between tasks, so its code stays in the process once it has been loaded.
#include <windows.h>

namespace Kep {
namespace {

bool pin()
{
    static const char inHere = 0;
    HMODULE self = nullptr;
    return GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN, &inHere, &self) !=
           0;
}

[[maybe_unused]] const bool pinned = pin();

} // namespace
} // namespace Kep
