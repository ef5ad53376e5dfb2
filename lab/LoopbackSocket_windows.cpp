#include "lab/LoopbackSocket.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <mswsock.h>

#include <array>
#include <cstring>
#include <map>
#include <system_error>
#include <vector>

namespace Lab {
namespace {

constexpr std::size_t batch = 64;
constexpr std::size_t datagramLimit = 65535;
constexpr std::size_t answerLimit = 65507;
/// Room for a sweep's burst: tens of thousands of small datagrams.
constexpr int receiveBuffer = 64 << 20;

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(::WSAGetLastError(), std::system_category(), what);
}

void startLibrary()
{
    WSADATA description{};
    static const int error = ::WSAStartup(MAKEWORD(2, 2), &description);
    ::WSASetLastError(error);
    if (error != 0)
        fail("cannot start the socket library");
}

sockaddr_in systemAddress(Address address, std::uint16_t port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    result.sin_addr.s_addr = htonl(address);
    return result;
}

/// A socket whose calls do not wait. Several may have the same port: what comes for an address goes to the one that is
/// bound to it, and else to the one that is bound to all.
class Socket {
public:
    Socket(Address address, std::uint16_t port) : _handle(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP))
    {
        if (_handle == INVALID_SOCKET)
            fail("cannot open a socket");
        const BOOL on = TRUE;
        const DWORD told = 1;
        u_long withoutWaiting = 1;
        ::setsockopt(_handle, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&on), sizeof on);
        ::setsockopt(_handle, SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char*>(&receiveBuffer),
                     sizeof receiveBuffer);
        const sockaddr_in place = systemAddress(address, port);
        if (::ioctlsocket(_handle, static_cast<long>(FIONBIO), &withoutWaiting) != 0 ||
            ::setsockopt(_handle, IPPROTO_IP, IP_PKTINFO, reinterpret_cast<const char*>(&told), sizeof told) != 0 ||
            ::bind(_handle, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) {
            const int error = ::WSAGetLastError();
            ::closesocket(_handle);
            ::WSASetLastError(error);
            fail("cannot open UDP port " + std::to_string(port));
        }
    }
    ~Socket() { ::closesocket(_handle); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    operator SOCKET() const { return _handle; }

    [[nodiscard]] bool send(ByteView datagram, const sockaddr_in& peer) const
    {
        return ::sendto(_handle, reinterpret_cast<const char*>(datagram.data()), static_cast<int>(datagram.size()), 0,
                        reinterpret_cast<const sockaddr*>(&peer), sizeof peer) >= 0;
    }

private:
    SOCKET _handle;
};

LPFN_WSARECVMSG findReceive(SOCKET handle)
{
    LPFN_WSARECVMSG receive = nullptr;
    GUID name = WSAID_WSARECVMSG;
    DWORD size = 0;
    if (::WSAIoctl(handle, SIO_GET_EXTENSION_FUNCTION_POINTER, &name, sizeof name, &receive, sizeof receive, &size,
                   nullptr, nullptr) != 0)
        fail("cannot receive with addresses");
    return receive;
}

/// The address that a datagram was sent to; 0 when the system does not say.
Address askedOf(WSAMSG& message)
{
    for (WSACMSGHDR* control = WSA_CMSG_FIRSTHDR(&message); control != nullptr;
         control = WSA_CMSG_NXTHDR(&message, control)) {
        if (control->cmsg_level == IPPROTO_IP && control->cmsg_type == IP_PKTINFO) {
            IN_PKTINFO info{};
            std::memcpy(&info, WSA_CMSG_DATA(control), sizeof info);
            return ntohl(info.ipi_addr.s_addr);
        }
    }
    return 0;
}

} // namespace

/// One socket hears what comes for any address. An answer has to come from the address that was asked, and a socket
/// answers from where it is bound: each address that has answered keeps a socket of its own, which hears its requests
/// from then on.
class LoopbackSocket::System {
public:
    explicit System(std::uint16_t port) : _all(INADDR_ANY, port), _receive(findReceive(_all))
    {
        if (_arrival == nullptr)
            fail("cannot watch the port");
        watch(_all);
    }
    ~System() { ::WSACloseEvent(_arrival); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    Counts exchange(const Answer& answer)
    {
        ::WSAResetEvent(_arrival); // set again by the system when something is left behind
        Counts counts;
        for (const SOCKET socket : sockets())
            serve(socket, answer, counts);
        return counts;
    }

    bool send(ByteView datagram, const Ends& ends)
    {
        try {
            return socketAt(ends.asked).send(datagram, systemAddress(ends.peer, ends.peerPort));
        } catch (const std::system_error&) {
            return false;
        }
    }

    [[nodiscard]] std::uint16_t port() const
    {
        sockaddr_in bound{};
        int size = sizeof bound;
        if (::getsockname(_all, reinterpret_cast<sockaddr*>(&bound), &size) != 0)
            fail("cannot learn the port");
        return ntohs(bound.sin_port);
    }

    [[nodiscard]] HANDLE arrival() const { return _arrival; }

private:
    void watch(SOCKET socket) const
    {
        if (::WSAEventSelect(socket, _arrival, FD_READ) != 0)
            fail("cannot watch the port");
    }

    const Socket& socketAt(Address address)
    {
        const auto [found, isNew] = _own.try_emplace(address);
        try {
            if (isNew) {
                found->second = std::make_unique<Socket>(address, port());
                watch(*found->second);
            }
        } catch (const std::system_error&) {
            _own.erase(found);
            throw;
        }
        return *found->second;
    }

    std::vector<SOCKET> sockets() const
    {
        std::vector<SOCKET> handles{_all};
        for (const auto& [address, socket] : _own)
            handles.push_back(*socket);
        return handles;
    }

    void serve(SOCKET socket, const Answer& answer, Counts& counts)
    {
        for (std::size_t i = 0; i < batch; ++i) {
            Ends ends;
            const int size = receive(socket, ends);
            if (size < 0 && ::WSAGetLastError() != WSAECONNRESET) // the reset tells of a peer that is gone
                return;
            if (size < 0 || !isLoopback(ends.asked) || !isLoopback(ends.peer))
                continue;
            ++counts.requests;
            const std::size_t length = answer(ByteView(_request).first(static_cast<std::size_t>(size)), ends, _answer);
            if (length > 0 && send(ByteView(_answer).first(length), ends))
                ++counts.answers;
        }
    }

    int receive(SOCKET socket, Ends& ends)
    {
        sockaddr_in peer{};
        WSABUF buffer{static_cast<ULONG>(_request.size()), reinterpret_cast<char*>(_request.data())};
        alignas(WSACMSGHDR) std::array<char, WSA_CMSG_SPACE(sizeof(IN_PKTINFO))> control{};
        WSAMSG message{};
        message.name = reinterpret_cast<sockaddr*>(&peer);
        message.namelen = sizeof peer;
        message.lpBuffers = &buffer;
        message.dwBufferCount = 1;
        message.Control = {static_cast<ULONG>(control.size()), control.data()};
        DWORD size = 0;
        if (_receive(socket, &message, &size, nullptr, nullptr) != 0)
            return -1;
        ends.asked = askedOf(message);
        ends.peer = ntohl(peer.sin_addr.s_addr);
        ends.peerPort = ntohs(peer.sin_port);
        return static_cast<int>(size);
    }

    Socket _all;
    LPFN_WSARECVMSG _receive;
    HANDLE _arrival = ::WSACreateEvent();
    std::map<Address, std::unique_ptr<Socket>> _own;
    Bytes _request = Bytes(datagramLimit);
    Bytes _answer = Bytes(answerLimit);
};

LoopbackSocket::LoopbackSocket(std::uint16_t port)
{
    startLibrary();
    _system = std::make_unique<System>(port);
}

LoopbackSocket::~LoopbackSocket() = default;

std::uint16_t LoopbackSocket::port() const
{
    return _system->port();
}

LoopbackSocket::Counts LoopbackSocket::exchange(const Answer& answer)
{
    return _system->exchange(answer);
}

bool LoopbackSocket::send(ByteView datagram, const Ends& ends)
{
    return _system->send(datagram, ends);
}

bool LoopbackSocket::sendFromOtherPort(ByteView datagram, const Ends& ends)
{
    return Socket(ends.asked, 0).send(datagram, systemAddress(ends.peer, ends.peerPort));
}

/// This system does not tell.
std::uint64_t LoopbackSocket::dropped() const
{
    return 0;
}

std::intptr_t LoopbackSocket::handle() const
{
    return reinterpret_cast<std::intptr_t>(_system->arrival());
}

} // namespace Lab
