#include "tests/network/harness/Loopback.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace NetworkTests {
namespace {

constexpr int firstPort = 10000;
constexpr int lastPort = 30000;

/// A bound UDP socket; none when the address or the port is not to be had.
Descriptor bindUdp(const std::string& address, std::uint16_t port)
{
    Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket) {
        throw std::system_error(errno, std::generic_category(), "socket");
    }
    sockaddr_in name = {};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &name.sin_addr);
    // Whatever the address, only what comes over the loopback interface is wanted.
    const char loopback[] = "lo";
    setsockopt(socket.get(), SOL_SOCKET, SO_BINDTODEVICE, loopback, sizeof loopback);
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
        socket.reset();
    }
    return socket;
}

void allowDescriptors(std::size_t count)
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < count + 100) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, count + 100);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

} // namespace

std::string ownNetwork()
{
    const int id = getpid();
    return "127." + std::to_string(64 + (id >> 8) % 128) + "." + std::to_string(id % 256);
}

std::string ownAddress(int lastOctet)
{
    return ownNetwork() + "." + std::to_string(lastOctet);
}

std::uint16_t freeUdpPort(const std::vector<std::string>& addresses)
{
    std::random_device random;
    std::uniform_int_distribution<int> anyPort(firstPort, lastPort);
    for (int attempt = 0; attempt < 200; ++attempt) {
        const auto port = static_cast<std::uint16_t>(anyPort(random));
        bool free = true;
        for (const std::string& address : addresses) {
            free = free && bindUdp(address, port);
        }
        if (free) {
            return port;
        }
    }
    throw std::runtime_error("no UDP port is free");
}

Endpoint freeEndpoint()
{
    return {ownAddress(1), freeUdpPort({ownAddress(1)})};
}

SilentAddresses::SilentAddresses(const std::vector<std::string>& addresses, std::uint16_t port)
{
    allowDescriptors(addresses.size());
    for (const std::string& address : addresses) {
        sockets_.push_back(bindUdp(address, port));
        if (!sockets_.back()) {
            throw std::system_error(errno, std::generic_category(), "bind " + address + ":" + std::to_string(port));
        }
    }
}

bool SilentAddresses::asked() const
{
    pollfd first = {.fd = sockets_.at(0).get(), .events = POLLIN, .revents = 0};
    return poll(&first, 1, 0) == 1;
}

} // namespace NetworkTests
