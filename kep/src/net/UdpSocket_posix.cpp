#include "net/UdpSocket.h"

#include <arpa/inet.h>
#include <linux/errqueue.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <system_error>

namespace Kep::Net {

namespace {

[[noreturn]] void throwLastError(const char* operation)
{
    throw std::system_error(errno, std::generic_category(), operation);
}

bool isPassing(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

sockaddr_in peerOf(std::uint32_t address, std::uint16_t port)
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = htonl(address);
    return peer;
}

bool isUnreachable(int error)
{
    return error == EHOSTUNREACH || error == ENETUNREACH;
}

// A route that is missing at the moment, or a neighbour that does not answer at the moment.
bool isSoft(const sock_extended_err& error)
{
    if (error.ee_origin != SO_EE_ORIGIN_ICMP) {
        return false;
    }
    return error.ee_type == ICMP_TIME_EXCEEDED ||
           (error.ee_type == ICMP_DEST_UNREACH &&
            (error.ee_code == ICMP_NET_UNREACH || error.ee_code == ICMP_HOST_UNREACH));
}

// The next error that the system has kept for a socket.
std::optional<sock_extended_err> takeQueuedError(int handle)
{
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(sock_extended_err) + sizeof(sockaddr_in))> control{};
    msghdr message{};
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    if (::recvmsg(handle, &message, MSG_ERRQUEUE | MSG_DONTWAIT) < 0) {
        return std::nullopt;
    }
    sock_extended_err error{};
    if (const cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header != nullptr && header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_RECVERR) {
        std::memcpy(&error, CMSG_DATA(header), sizeof error);
    }
    return error;
}

// Without this the system keeps soft errors to itself.
void askForErrors(int handle)
{
    const int on = 1;
    ::setsockopt(handle, IPPROTO_IP, IP_RECVERR, &on, sizeof on);
}

int openSocket(const sockaddr_in& peer)
{
    const int handle = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (handle < 0) {
        throwLastError("socket");
    }
    askForErrors(handle);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the sockets interface wants it so
    if (::connect(handle, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0) {
        return handle;
    }
    const int error = errno;
    ::close(handle);
    errno = error;
    throwLastError("connect");
}

int pollTimeout(std::chrono::steady_clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, INT_MAX));
}

} // namespace

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t port) : handle_(openSocket(peerOf(address, port))) {}

UdpSocket::~UdpSocket()
{
    ::close(static_cast<int>(handle_));
}

void UdpSocket::send(std::span<const unsigned char> packet)
{
    const auto trySend = [&] {
        return ::send(static_cast<int>(handle_), packet.data(), packet.size(), MSG_NOSIGNAL) >= 0 || isPassing(errno) ||
               errno == ENOBUFS;
    };
    // The error may be that of an earlier packet, and then this one has not been sent.
    if (!trySend() && !(isUnreachable(errno) && takeSoftErrors() && trySend())) {
        throwLastError("send");
    }
}

bool UdpSocket::waitReadable(std::chrono::steady_clock::time_point deadline)
{
    pollfd wanted{static_cast<int>(handle_), POLLIN, 0};
    for (;;) {
        const int ready = ::poll(&wanted, 1, pollTimeout(deadline));
        if (ready > 0) {
            return true;
        }
        if (ready < 0 && errno != EINTR) {
            throwLastError("poll");
        }
        if (ready == 0 && std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
    }
}

std::optional<std::size_t> UdpSocket::receive(std::span<unsigned char> buffer)
{
    const ssize_t size = ::recv(static_cast<int>(handle_), buffer.data(), buffer.size(), 0);
    if (size >= 0) {
        return static_cast<std::size_t>(size);
    }
    if (isPassing(errno)) {
        takeSoftErrors();
        return std::nullopt;
    }
    if (!isUnreachable(errno) || !takeSoftErrors()) {
        throwLastError("recv");
    }
    return std::nullopt;
}

// Takes all errors that the system has kept, without which the socket would stay readable. Whether there were any, and
// none but soft ones; if not, `errno` is as before.
bool UdpSocket::takeSoftErrors()
{
    const int before = errno;
    bool any = false;
    bool others = false;
    while (const auto error = takeQueuedError(static_cast<int>(handle_))) {
        any = any || isSoft(*error);
        others = others || !isSoft(*error);
    }
    errno = before;
    unreachable_ = unreachable_ || any;
    return any && !others;
}

bool isShortage(const std::error_code& error)
{
    for (const auto shortage :
         {std::errc::too_many_files_open, std::errc::too_many_files_open_in_system,
          std::errc::resource_unavailable_try_again, std::errc::no_buffer_space, std::errc::not_enough_memory}) {
        if (error == shortage) {
            return true;
        }
    }
    return false;
}

} // namespace Kep::Net
