#include "net/ResolverSystem.h"

#include <array>
#include <cstddef>

#include <arpa/inet.h>
#include <netdb.h>
#include <poll.h>

namespace Kep::Net {
namespace {

using Sockets = std::array<pollfd, ARES_GETSOCK_MAXNUM>;

// The channel's sockets with what it waits for; how many there are.
std::size_t socketsOf(ares_channel channel, Sockets& sockets)
{
    std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> descriptors{};
    const int wanted = ares_getsock(channel, descriptors.data(), static_cast<int>(descriptors.size()));
    std::size_t count = 0;
    for (std::size_t index = 0; index < descriptors.size(); ++index) {
        const int readable = ARES_GETSOCK_READABLE(wanted, index) ? POLLIN : 0;
        const int writable = ARES_GETSOCK_WRITABLE(wanted, index) ? POLLOUT : 0;
        if (readable != 0 || writable != 0) {
            sockets[count++] = {descriptors[index], static_cast<short>(readable | writable), 0};
        }
    }
    return count;
}

} // namespace

void startReverseLookup(ares_channel channel, std::uint32_t address, ares_host_callback callback, void* argument)
{
    const std::uint32_t octets = htonl(address);
    ares_gethostbyaddr(channel, &octets, sizeof octets, AF_INET, callback, argument);
}

std::string_view officialName(const hostent& host)
{
    return host.h_name == nullptr ? std::string_view() : std::string_view(host.h_name);
}

void processResolver(ares_channel channel, std::chrono::milliseconds timeout)
{
    Sockets sockets{};
    const std::size_t count = socketsOf(channel, sockets);
    if (::poll(sockets.data(), count, static_cast<int>(timeout.count())) <= 0) {
        ares_process_fd(channel, ARES_SOCKET_BAD, ARES_SOCKET_BAD);
        return;
    }
    for (std::size_t index = 0; index < count; ++index) {
        const pollfd& socket = sockets[index];
        const bool failed = (socket.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
        const bool read = failed || (socket.revents & POLLIN) != 0;
        const bool write = failed || (socket.revents & POLLOUT) != 0;
        if (read || write) {
            ares_process_fd(channel, read ? socket.fd : ARES_SOCKET_BAD, write ? socket.fd : ARES_SOCKET_BAD);
        }
    }
}

} // namespace Kep::Net
