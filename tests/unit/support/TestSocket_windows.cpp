#include "tests/unit/support/TestSocket.h"

#include <system_error>

#include <winsock2.h>
#include <ws2tcpip.h>

namespace TestSupport {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(WSAGetLastError(), std::system_category(), what);
}

SOCKET openSocket()
{
    WSADATA description{};
    static const int error = WSAStartup(MAKEWORD(2, 2), &description);
    const SOCKET handle = error == 0 ? ::socket(AF_INET, SOCK_DGRAM, 0) : INVALID_SOCKET;
    if (handle == INVALID_SOCKET)
        fail("socket");
    return handle;
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

TestSocket::TestSocket(Place place) : handle_(static_cast<std::intptr_t>(openSocket()))
{
    const sockaddr_in address = systemAddress(place);
    if (::bind(static_cast<SOCKET>(handle_), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = WSAGetLastError();
        ::closesocket(static_cast<SOCKET>(handle_));
        WSASetLastError(error);
        fail("bind");
    }
}

TestSocket::~TestSocket()
{
    ::closesocket(static_cast<SOCKET>(handle_));
}

std::uint16_t TestSocket::port() const
{
    sockaddr_in address{};
    int size = sizeof address;
    if (::getsockname(static_cast<SOCKET>(handle_), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        fail("getsockname");
    return ntohs(address.sin_port);
}

bool TestSocket::waitReadable(int milliseconds) const
{
    fd_set wanted;
    FD_ZERO(&wanted);
    FD_SET(static_cast<SOCKET>(handle_), &wanted);
    timeval time{milliseconds / 1000, milliseconds % 1000 * 1000};
    return ::select(0, &wanted, nullptr, nullptr, &time) > 0;
}

std::string TestSocket::receive(Place& sender) const
{
    std::string datagram(65535, '\0');
    sockaddr_in peer{};
    int size = sizeof peer;
    const int count = ::recvfrom(static_cast<SOCKET>(handle_), datagram.data(), static_cast<int>(datagram.size()), 0,
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
    if (::sendto(static_cast<SOCKET>(handle_), datagram.data(), static_cast<int>(datagram.size()), 0,
                 reinterpret_cast<const sockaddr*>(&peer), sizeof peer) < 0)
        fail("sendto");
}

} // namespace TestSupport
