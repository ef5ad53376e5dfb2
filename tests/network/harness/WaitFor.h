/// Waiting for something that another process does.
#pragma once

#include <chrono>
#include <thread>

namespace NetworkTests {

/// Tests `condition` until it holds or `bound` has passed; true when it held. The bound is against hangs: nothing
/// here measures speed.
template <typename Condition> bool waitFor(Condition&& condition, std::chrono::milliseconds bound)
{
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace NetworkTests
