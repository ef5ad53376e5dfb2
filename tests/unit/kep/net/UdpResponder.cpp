#include "tests/unit/kep/net/UdpResponder.h"

#include <stdexcept>
#include <utility>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Kep::Testing {
namespace {

int boundSocket(std::uint16_t& port)
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof local;
    if (descriptor < 0 || ::bind(descriptor, reinterpret_cast<sockaddr*>(&local), length) != 0 ||
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &length) != 0) {
        throw std::runtime_error("no socket for a responder");
    }
    port = ntohs(local.sin_port);
    return descriptor;
}

} // namespace

UdpResponder::UdpResponder(Script script)
    : script_(std::move(script)), socket_(boundSocket(port_)), thread_([this] { serve(); })
{}

UdpResponder::~UdpResponder()
{
    ending_ = true;
    thread_.join();
    ::close(socket_);
}

std::vector<Bytes> UdpResponder::requests()
{
    const MutexLock lock(mutex_);
    return requests_;
}

void UdpResponder::serve()
{
    int number = 0;
    while (!ending_) {
        pollfd wanted{.fd = socket_, .events = POLLIN, .revents = 0};
        if (::poll(&wanted, 1, 10) <= 0) {
            continue;
        }
        Bytes request(2048);
        sockaddr_in peer{};
        socklen_t length = sizeof peer;
        const ssize_t size =
            ::recvfrom(socket_, request.data(), request.size(), 0, reinterpret_cast<sockaddr*>(&peer), &length);
        request.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        {
            const MutexLock lock(mutex_);
            requests_.push_back(request);
        }
        for (const Bytes& reply : script_(request, number++)) {
            ::sendto(socket_, reply.data(), reply.size(), 0, reinterpret_cast<const sockaddr*>(&peer), length);
        }
    }
}

std::uint16_t closedPort()
{
    std::uint16_t port = 0;
    ::close(boundSocket(port));
    return port;
}

} // namespace Kep::Testing
