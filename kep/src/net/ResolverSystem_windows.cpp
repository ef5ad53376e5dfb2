#include "net/ResolverSystem.h"

#include "base/Winsock.h"

#include <array>
#include <cstddef>
#include <thread>

namespace Kep::Net {
namespace {

using Sockets = std::array<WSAPOLLFD, ARES_GETSOCK_MAXNUM>;

// The channel's sockets with what it waits for; how many there are.
std::size_t socketsOf(ares_channel channel, Sockets& sockets)
{
    std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> handles{};
    const auto wanted = static_cast<unsigned>(ares_getsock(channel, handles.data(), static_cast<int>(handles.size())));
    std::size_t count = 0;
    for (std::size_t index = 0; index < handles.size(); ++index) {
        const int readable = ARES_GETSOCK_READABLE(wanted, index) ? POLLRDNORM : 0;
        const int writable = ARES_GETSOCK_WRITABLE(wanted, index) ? POLLWRNORM : 0;
        if (readable != 0 || writable != 0) {
            sockets[count++] = {handles[index], static_cast<SHORT>(readable | writable), 0};
        }
    }
    return count;
}

// The system refuses to wait for no sockets at all.
bool isReady(Sockets& sockets, std::size_t count, std::chrono::milliseconds timeout)
{
    if (count == 0) {
        std::this_thread::sleep_for(timeout);
        return false;
    }
    return ::WSAPoll(sockets.data(), static_cast<ULONG>(count), static_cast<INT>(timeout.count())) > 0;
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
    if (!isReady(sockets, count, timeout)) {
        ares_process_fd(channel, ARES_SOCKET_BAD, ARES_SOCKET_BAD);
        return;
    }
    for (std::size_t index = 0; index < count; ++index) {
        const WSAPOLLFD& socket = sockets[index];
        const bool failed = (socket.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
        const bool read = failed || (socket.revents & POLLRDNORM) != 0;
        const bool write = failed || (socket.revents & POLLWRNORM) != 0;
        if (read || write) {
            ares_process_fd(channel, read ? socket.fd : ARES_SOCKET_BAD, write ? socket.fd : ARES_SOCKET_BAD);
        }
    }
}

} // namespace Kep::Net
