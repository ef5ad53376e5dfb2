#include "base/Immortal.h"
#include "snmp/DescriptorLine.h"
#include "snmp/UdpSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

namespace Kep::Snmp {

namespace {

DescriptorLine& descriptorLine()
{
    static Immortal<DescriptorLine> line;
    return *line;
}

[[noreturn]] void throwLastError(const char* operation)
{
    throw std::system_error(errno, std::generic_category(), operation);
}

bool outOfDescriptors(int error)
{
    return error == EMFILE || error == ENFILE;
}

bool isPassing(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

int openSocket()
{
    int handle = -1;
    descriptorLine().open([&handle] {
        handle = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (handle < 0 && !outOfDescriptors(errno))
            throwLastError("socket");
        return handle >= 0;
    });
    return handle;
}

void closeSocket(int handle)
{
    ::close(handle);
    descriptorLine().freed();
}

int pollTimeout(std::chrono::steady_clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, INT_MAX));
}

} // namespace

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t port) : handle_(openSocket())
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = htonl(address);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the sockets interface wants it so
    if (::connect(static_cast<int>(handle_), reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0)
        return;
    const int error = errno;
    closeSocket(static_cast<int>(handle_));
    throw std::system_error(error, std::generic_category(), "connect");
}

UdpSocket::~UdpSocket()
{
    closeSocket(static_cast<int>(handle_));
}

void UdpSocket::send(std::span<const unsigned char> packet)
{
    if (::send(static_cast<int>(handle_), packet.data(), packet.size(), MSG_NOSIGNAL) < 0 && !isPassing(errno) &&
        errno != ENOBUFS)
        throwLastError("send");
}

bool UdpSocket::waitReadable(std::chrono::steady_clock::time_point deadline)
{
    pollfd wanted{static_cast<int>(handle_), POLLIN, 0};
    for (;;) {
        const int ready = ::poll(&wanted, 1, pollTimeout(deadline));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            throwLastError("poll");
        if (ready == 0 && std::chrono::steady_clock::now() >= deadline)
            return false;
    }
}

std::optional<std::size_t> UdpSocket::receive(std::span<unsigned char> buffer)
{
    const ssize_t size = ::recv(static_cast<int>(handle_), buffer.data(), buffer.size(), 0);
    if (size >= 0)
        return static_cast<std::size_t>(size);
    if (!isPassing(errno))
        throwLastError("recv");
    return std::nullopt;
}

} // namespace Kep::Snmp
