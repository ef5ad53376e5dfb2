#include "tests/unit/support/TestSocket.h"

#include <cerrno>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace TestSupport {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_in systemAddress(Place place)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(place.port);
    address.sin_addr.s_addr = htonl(place.address);
    return address;
}

} // namespace

TestSocket::TestSocket(Place place) : handle_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    const sockaddr_in address = systemAddress(place);
    if (handle_ < 0)
        fail("socket");
    if (::bind(static_cast<int>(handle_), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        ::close(static_cast<int>(handle_));
        errno = error;
        fail("bind");
    }
}

TestSocket::~TestSocket()
{
    ::close(static_cast<int>(handle_));
}

std::uint16_t TestSocket::port() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(static_cast<int>(handle_), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        fail("getsockname");
    return ntohs(address.sin_port);
}

bool TestSocket::waitReadable(int milliseconds) const
{
    pollfd wanted{static_cast<int>(handle_), POLLIN, 0};
    return ::poll(&wanted, 1, milliseconds) > 0;
}

std::string TestSocket::receive(Place& sender) const
{
    std::string datagram(65535, '\0');
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    const ssize_t count = ::recvfrom(static_cast<int>(handle_), datagram.data(), datagram.size(), 0,
                                     reinterpret_cast<sockaddr*>(&peer), &size);
    if (count < 0)
        fail("recvfrom");
    sender = {ntohl(peer.sin_addr.s_addr), ntohs(peer.sin_port)};
    datagram.resize(static_cast<std::size_t>(count));
    return datagram;
}

void TestSocket::send(std::string_view datagram, Place receiver) const
{
    const sockaddr_in peer = systemAddress(receiver);
    if (::sendto(static_cast<int>(handle_), datagram.data(), datagram.size(), 0,
                 reinterpret_cast<const sockaddr*>(&peer), sizeof peer) < 0)
        fail("sendto");
}

} // namespace TestSupport
