#include "tasks/HeldCode.h"

#include <windows.h>

namespace Kep {
namespace {

void release(HMODULE library)
{
    if (library != nullptr) {
        FreeLibrary(library);
    }
}

} // namespace

// A library is told of its unloading under a lock that threads need to begin and end, so it cannot wait for tasks then;
// it has to stay until they have ended.
std::shared_ptr<const void> holdCode(const void* address)
{
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCWSTR>(address), &library);
    return {library, release};
}

} // namespace Kep
