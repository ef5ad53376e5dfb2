#include "net/ResolverSystem.h"

#include <array>
#include <cstddef>

#include <netdb.h>
#include <poll.h>

namespace Kep::Net {

std::string_view officialName(const hostent& host)
{
    return host.h_name == nullptr ? std::string_view() : std::string_view(host.h_name);
}

void waitForSockets(std::span<ResolverSocket> sockets, std::chrono::milliseconds timeout)
{
    std::array<pollfd, ARES_GETSOCK_MAXNUM> polled{};
    for (std::size_t index = 0; index < sockets.size(); ++index) {
        const ResolverSocket& socket = sockets[index];
        const int events = (socket.read ? POLLIN : 0) | (socket.write ? POLLOUT : 0);
        polled[index] = {socket.handle, static_cast<short>(events), 0};
    }
    ::poll(polled.data(), sockets.size(), static_cast<int>(timeout.count()));
    for (std::size_t index = 0; index < sockets.size(); ++index) {
        const auto happened = polled[index].revents;
        const bool failed = (happened & (POLLERR | POLLHUP | POLLNVAL)) != 0;
        sockets[index].read = failed || (happened & POLLIN) != 0;
        sockets[index].write = failed || (happened & POLLOUT) != 0;
    }
}

} // namespace Kep::Net
