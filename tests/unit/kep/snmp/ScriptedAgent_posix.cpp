#include "ScriptedAgent.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace {

constexpr std::uint32_t otherLoopbackAddress = INADDR_LOOPBACK + 1;

void check(int result)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category());
}

sockaddr* generic(sockaddr_in& address)
{
    return reinterpret_cast<sockaddr*>(&address);
}

int newSocket()
{
    const int handle = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    check(handle);
    return handle;
}

bool bindTo(int handle, std::uint32_t ip, std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(ip);
    return ::bind(handle, generic(address), sizeof address) == 0;
}

int bound(std::uint32_t ip)
{
    const int handle = newSocket();
    check(bindTo(handle, ip, 0) ? 0 : -1);
    return handle;
}

bool isFree(std::uint16_t port)
{
    const int handle = newSocket();
    const bool free = bindTo(handle, INADDR_ANY, port);
    ::close(handle);
    return free;
}

std::uint16_t portOf(int handle)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    check(::getsockname(handle, generic(address), &size));
    return ntohs(address.sin_port);
}

void sendFrom(int handle, const Ber::Bytes& bytes, sockaddr_in peer)
{
    check(static_cast<int>(::sendto(handle, bytes.data(), bytes.size(), 0, generic(peer), sizeof peer)));
}

void sendAnswer(int agent, const Answer& answer, sockaddr_in peer)
{
    if (answer.from == Answer::From::agent)
        return sendFrom(agent, answer.bytes, peer);
    const int other = bound(answer.from == Answer::From::otherPort ? INADDR_LOOPBACK : otherLoopbackAddress);
    sendFrom(other, answer.bytes, peer);
    ::close(other);
}

} // namespace

ScriptedAgent::ScriptedAgent(Script script)
    : script_(std::move(script)), socket_(bound(INADDR_LOOPBACK)), port_(portOf(socket_)), thread_([this] { serve(); })
{}

ScriptedAgent::~ScriptedAgent()
{
    stop_ = true;
    thread_.join();
    ::close(socket_);
}

std::vector<Ber::Bytes> ScriptedAgent::requests() const
{
    const Kep::MutexLock lock(mutex_);
    return requests_;
}

std::size_t ScriptedAgent::note(const Ber::Bytes& request)
{
    const Kep::MutexLock lock(mutex_);
    requests_.push_back(request);
    return requests_.size();
}

void ScriptedAgent::serve()
{
    Ber::Bytes buffer(65535, '\0');
    while (!stop_) {
        pollfd wanted{socket_, POLLIN, 0};
        if (::poll(&wanted, 1, 5) <= 0)
            continue;
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        const ssize_t received = ::recvfrom(socket_, buffer.data(), buffer.size(), 0, generic(peer), &size);
        check(static_cast<int>(received));
        const Ber::Bytes request = buffer.substr(0, static_cast<std::size_t>(received));
        for (const Answer& answer : script_(request, note(request)))
            sendAnswer(socket_, answer, peer);
    }
}

SilentPort::SilentPort() : socket_(bound(INADDR_LOOPBACK)), port_(portOf(socket_)) {}

SilentPort::~SilentPort()
{
    ::close(socket_);
}

std::uint16_t closedPort()
{
    // Below the ports that the system hands out by itself: nobody comes to one of these by chance.
    constexpr unsigned first = 10000;
    constexpr unsigned count = 20000;
    static std::atomic<unsigned> next = static_cast<unsigned>(::getpid()) * 7;
    for (;;) {
        const auto port = static_cast<std::uint16_t>(first + next++ % count);
        if (isFree(port))
            return port;
    }
}
