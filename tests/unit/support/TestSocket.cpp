#include "tests/unit/support/TestSocket.h"

#include <atomic>
#include <random>
#include <system_error>

namespace TestSupport {

bool isFree(std::uint16_t port)
{
    try {
        const TestSocket probe({0, port});
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

std::uint16_t unusedPort()
{
    // Below the ports that the system hands out by itself: nobody comes to one of these by chance.
    constexpr unsigned first = 10000;
    constexpr unsigned count = 20000;
    static std::atomic<unsigned> next = std::random_device()();
    for (;;) {
        const auto port = static_cast<std::uint16_t>(first + next++ % count);
        if (isFree(port))
            return port;
    }
}

} // namespace TestSupport
