#include "net/UdpSocket.h"

#include "Kep/Exception.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Kep::Net {
namespace {

using std::chrono::steady_clock;

std::intptr_t openSocket()
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        throw GenericException("no socket for a NetBIOS query: " + std::generic_category().message(errno));
    }
    return descriptor;
}

bool isTransient(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR || error == ENOBUFS || error == ENOMEM;
}

// Milliseconds until `deadline`, rounded up, so that a wait never ends before it.
int millisecondsUntil(steady_clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 60'000));
}

} // namespace

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t port) : handle_(openSocket())
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = htonl(address);
    reachable_ = ::connect(static_cast<int>(handle_), reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0;
}

UdpSocket::~UdpSocket()
{
    ::close(static_cast<int>(handle_));
}

UdpSocket::Outcome UdpSocket::send(std::span<const std::uint8_t> datagram)
{
    if (!reachable_) {
        return Outcome::closed;
    }
    if (::send(static_cast<int>(handle_), datagram.data(), datagram.size(), 0) >= 0 || isTransient(errno)) {
        return Outcome::done;
    }
    return Outcome::closed;
}

UdpSocket::Outcome UdpSocket::receive(std::span<std::uint8_t> buffer, steady_clock::time_point deadline,
                                      std::size_t& size)
{
    for (;;) {
        const ssize_t count = ::recv(static_cast<int>(handle_), buffer.data(), buffer.size(), 0);
        if (count >= 0) {
            size = static_cast<std::size_t>(count);
            return Outcome::done;
        }
        if (!isTransient(errno)) {
            return Outcome::closed;
        }
        if (steady_clock::now() >= deadline) {
            return Outcome::timeout;
        }
        pollfd wanted{.fd = static_cast<int>(handle_), .events = POLLIN, .revents = 0};
        ::poll(&wanted, 1, millisecondsUntil(deadline));
    }
}

} // namespace Kep::Net
