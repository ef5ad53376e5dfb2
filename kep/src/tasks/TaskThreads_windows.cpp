#include "tasks/TaskThreads.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include <windows.h>

#include <process.h>

namespace Kep {
namespace {

// Address space; what a probe does not touch costs no memory. Exceptions need more of it here than elsewhere.
constexpr unsigned stackSize = 256 * 1024;

using Body = std::function<void()>;

unsigned __stdcall runBody(void* argument)
{
    const std::unique_ptr<Body> body(static_cast<Body*>(argument));
    (*body)();
    return 0;
}

} // namespace

bool SystemTaskThreads::start(Body body) noexcept
{
    try {
        auto owned = std::make_unique<Body>(std::move(body));
        const std::uintptr_t thread =
            _beginthreadex(nullptr, stackSize, runBody, owned.get(), STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
        if (thread == 0) {
            return false;
        }
        static_cast<void>(owned.release()); // the thread's from here on
        CloseHandle(reinterpret_cast<HANDLE>(thread));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace Kep
