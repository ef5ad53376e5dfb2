#include "host/Interruption.h"

#include <thread>

namespace Host {

std::chrono::steady_clock::time_point Interruption::now()
{
    return std::chrono::steady_clock::now();
}

bool Interruption::sleep(std::chrono::milliseconds time)
{
    const auto deadline = now() + time;
    while (!interrupted()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now());
        if (left.count() <= 0)
            return true;
        waitForWish(left);
    }
    return false;
}

void Interruption::rest(std::chrono::milliseconds time)
{
    std::this_thread::sleep_for(time);
}

} // namespace Host
