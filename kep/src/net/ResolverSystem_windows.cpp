#include "net/ResolverSystem.h"

#include "base/Winsock.h"

#include <array>
#include <cstddef>
#include <thread>

namespace Kep::Net {

std::string_view officialName(const hostent& host)
{
    return host.h_name == nullptr ? std::string_view() : std::string_view(host.h_name);
}

void waitForSockets(std::span<ResolverSocket> sockets, std::chrono::milliseconds timeout)
{
    if (sockets.empty()) { // for which the system refuses to wait
        std::this_thread::sleep_for(timeout);
        return;
    }
    std::array<WSAPOLLFD, ARES_GETSOCK_MAXNUM> polled{};
    for (std::size_t index = 0; index < sockets.size(); ++index) {
        const ResolverSocket& socket = sockets[index];
        const int events = (socket.read ? POLLRDNORM : 0) | (socket.write ? POLLWRNORM : 0);
        polled[index] = {socket.handle, static_cast<SHORT>(events), 0};
    }
    ::WSAPoll(polled.data(), static_cast<ULONG>(sockets.size()), static_cast<INT>(timeout.count()));
    for (std::size_t index = 0; index < sockets.size(); ++index) {
        const auto happened = polled[index].revents;
        const bool failed = (happened & (POLLERR | POLLHUP | POLLNVAL)) != 0;
        sockets[index].read = failed || (happened & POLLRDNORM) != 0;
        sockets[index].write = failed || (happened & POLLWRNORM) != 0;
    }
}

} // namespace Kep::Net
