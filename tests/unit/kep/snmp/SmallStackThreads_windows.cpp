#include "SmallStackThreads.h"

#include <stdexcept>
#include <vector>

#include <windows.h>

namespace {

constexpr SIZE_T stackSize = 256 * 1024;

struct Job {
    const std::function<void(std::size_t)>* action;
    std::size_t number;
};

DWORD WINAPI run(void* job)
{
    const auto* const todo = static_cast<const Job*>(job);
    (*todo->action)(todo->number);
    return 0;
}

} // namespace

void onSmallStacks(std::size_t count, const std::function<void(std::size_t)>& action)
{
    std::vector<Job> jobs(count);
    std::vector<HANDLE> threads(count);
    for (std::size_t i = 0; i < count; ++i) {
        jobs[i] = {&action, i};
        threads[i] = CreateThread(nullptr, stackSize, run, &jobs[i], STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
        if (threads[i] == nullptr)
            throw std::runtime_error("cannot start a thread");
    }
    for (const HANDLE thread : threads) {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
}
