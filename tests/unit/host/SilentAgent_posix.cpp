#include "tests/unit/host/SilentAgent.h"

#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Host {

namespace {

/// A bound socket; `port` 0 takes any and says which.
int bindTo(const std::string& address, std::uint16_t& port)
{
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &name.sin_addr);
    socklen_t length = sizeof name;
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    auto* generic = reinterpret_cast<sockaddr*>(&name);
    if (socket < 0 || bind(socket, generic, length) != 0 || getsockname(socket, generic, &length) != 0) {
        close(socket);
        throw std::runtime_error("cannot bind to " + address);
    }
    port = ntohs(name.sin_port);
    return socket;
}

} // namespace

SilentAgent::SilentAgent(const std::vector<std::string>& addresses)
{
    for (const std::string& address : addresses)
        sockets_.push_back(bindTo(address, port_));
}

SilentAgent::~SilentAgent()
{
    for (const int socket : sockets_)
        close(socket);
}

bool SilentAgent::waitForRequest() const
{
    pollfd first{sockets_.front(), POLLIN, 0};
    return poll(&first, 1, 60000) == 1;
}

std::string closedPort()
{
    return SilentAgent({"127.0.0.1"}).port();
}

} // namespace Host
