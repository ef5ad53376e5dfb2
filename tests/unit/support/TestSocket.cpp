#include "tests/unit/support/TestSocket.h"

#include SYSTEM_SOCKET // the header of this system, as CMake names it

#include <atomic>
#include <random>

namespace TestSupport {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(lastError(), what);
}

SystemSocket systemSocket(std::intptr_t handle)
{
    return static_cast<SystemSocket>(handle);
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
    if (handle_ == -1)
        fail("socket");
    const sockaddr_in address = systemAddress(place);
    if (::bind(systemSocket(handle_), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const std::error_code error = lastError();
        closeSocket(systemSocket(handle_));
        throw std::system_error(error, "bind");
    }
}

TestSocket::~TestSocket()
{
    closeSocket(systemSocket(handle_));
}

std::uint16_t TestSocket::port() const
{
    sockaddr_in address{};
    AddressSize size = sizeof address;
    if (::getsockname(systemSocket(handle_), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        fail("getsockname");
    return ntohs(address.sin_port);
}

bool TestSocket::waitReadable(int milliseconds) const
{
    return isReadable(systemSocket(handle_), milliseconds);
}

std::string TestSocket::receive(Place& sender) const
{
    std::string datagram(65535, '\0');
    sockaddr_in peer{};
    AddressSize size = sizeof peer;
    const auto count = ::recvfrom(systemSocket(handle_), datagram.data(), static_cast<DataSize>(datagram.size()), 0,
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
    if (::sendto(systemSocket(handle_), datagram.data(), static_cast<DataSize>(datagram.size()), 0,
                 reinterpret_cast<const sockaddr*>(&peer), sizeof peer) < 0)
        fail("sendto");
}

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
