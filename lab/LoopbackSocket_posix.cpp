#include "lab/LoopbackSocket.h"

#include <arpa/inet.h>
#include <linux/sock_diag.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

namespace Lab {
namespace {

constexpr std::size_t batch = 64;
constexpr std::size_t datagramLimit = 65535;
constexpr std::size_t answerLimit = 65507;
/// Room for a sweep's burst: tens of thousands of small datagrams.
constexpr int receiveBuffer = 64 << 20;
constexpr char loopbackInterface[] = "lo";

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// A file descriptor that closes with its owner.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : _descriptor(descriptor) {}
    ~Descriptor() { ::close(_descriptor); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    operator int() const { return _descriptor; }

private:
    int _descriptor;
};

int openSocket()
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        fail("cannot open a socket");
    return descriptor;
}

/// Where binding to the interface is not permitted, the check of each datagram's interface stands alone.
void keepToLoopback(int descriptor)
{
    ::setsockopt(descriptor, SOL_SOCKET, SO_BINDTODEVICE, loopbackInterface, sizeof loopbackInterface);
    const int on = 1;
    if (::setsockopt(descriptor, IPPROTO_IP, IP_PKTINFO, &on, sizeof on) != 0)
        fail("cannot learn the addresses that are asked");
}

void enlargeReceiveBuffer(int descriptor)
{
    if (::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &receiveBuffer, sizeof receiveBuffer) != 0)
        ::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
}

sockaddr_in systemAddress(Address address, std::uint16_t port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    result.sin_addr.s_addr = htonl(address);
    return result;
}

void bindTo(int descriptor, Address address, std::uint16_t port)
{
    const sockaddr_in place = systemAddress(address, port);
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0)
        fail("cannot open UDP port " + std::to_string(port));
}

/// One datagram's buffers and the system's description of them. The answer goes back to the request's sender.
struct Slot {
    Bytes request = Bytes(datagramLimit);
    Bytes answer = Bytes(answerLimit);
    sockaddr_in peer{};
    iovec requestVector{request.data(), request.size()};
    iovec answerVector{answer.data(), 0};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> control{};
};

msghdr header(Slot& slot, iovec& vector)
{
    msghdr message{};
    message.msg_name = &slot.peer;
    message.msg_namelen = sizeof slot.peer;
    message.msg_iov = &vector;
    message.msg_iovlen = 1;
    message.msg_control = slot.control.data();
    message.msg_controllen = slot.control.size();
    return message;
}

/// Where a datagram came in and what address it was sent to; all zero when the system does not say.
in_pktinfo arrivalOf(msghdr& message)
{
    in_pktinfo info{};
    for (cmsghdr* control = CMSG_FIRSTHDR(&message); control != nullptr; control = CMSG_NXTHDR(&message, control)) {
        if (control->cmsg_level == IPPROTO_IP && control->cmsg_type == IP_PKTINFO)
            std::memcpy(&info, CMSG_DATA(control), sizeof info);
    }
    return info;
}

/// Has the answer come from `asked`.
void setSource(msghdr& message, Address asked)
{
    in_pktinfo info{};
    info.ipi_spec_dst.s_addr = htonl(asked);
    cmsghdr* control = CMSG_FIRSTHDR(&message);
    control->cmsg_level = IPPROTO_IP;
    control->cmsg_type = IP_PKTINFO;
    control->cmsg_len = CMSG_LEN(sizeof info);
    std::memcpy(CMSG_DATA(control), &info, sizeof info);
}

} // namespace

class LoopbackSocket::System {
public:
    explicit System(std::uint16_t port) : _socket(openSocket()), _loopback(::if_nametoindex(loopbackInterface))
    {
        keepToLoopback(_socket);
        enlargeReceiveBuffer(_socket);
        bindTo(_socket, INADDR_ANY, port);
    }

    Counts exchange(const Answer& answer)
    {
        const std::size_t received = receive();
        std::size_t answers = 0;
        for (std::size_t i = 0; i < received; ++i)
            answers += prepareAnswer(i, answers, answer) ? 1 : 0;
        return {received, send(answers)};
    }

    bool sendOne(ByteView datagram, const Ends& ends)
    {
        Slot& slot = _slots.front();
        slot.peer = systemAddress(ends.peer, ends.peerPort);
        iovec vector{const_cast<std::uint8_t*>(datagram.data()), datagram.size()};
        msghdr message = header(slot, vector);
        setSource(message, ends.asked);
        return ::sendmsg(_socket, &message, MSG_NOSIGNAL) >= 0;
    }

    [[nodiscard]] int descriptor() const { return _socket; }

private:
    std::size_t receive()
    {
        for (std::size_t i = 0; i < batch; ++i)
            _received[i].msg_hdr = header(_slots[i], _slots[i].requestVector);
        const int count = ::recvmmsg(_socket, _received.data(), batch, MSG_DONTWAIT, nullptr);
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            fail("cannot receive");
        return 0;
    }

    bool prepareAnswer(std::size_t index, std::size_t answers, const Answer& answer)
    {
        Slot& slot = _slots[index];
        const in_pktinfo arrival = arrivalOf(_received[index].msg_hdr);
        const Ends ends{ntohl(arrival.ipi_addr.s_addr), ntohl(slot.peer.sin_addr.s_addr), ntohs(slot.peer.sin_port)};
        if (static_cast<unsigned>(arrival.ipi_ifindex) != _loopback || !isLoopback(ends.asked))
            return false;
        slot.answerVector.iov_len = answer(ByteView(slot.request).first(_received[index].msg_len), ends, slot.answer);
        if (slot.answerVector.iov_len == 0)
            return false;
        _sent[answers].msg_hdr = header(slot, slot.answerVector);
        setSource(_sent[answers].msg_hdr, ends.asked);
        return true;
    }

    std::size_t send(std::size_t answers)
    {
        std::size_t sent = 0;
        for (std::size_t next = 0; next < answers;) {
            const int count =
                ::sendmmsg(_socket, _sent.data() + next, static_cast<unsigned>(answers - next), MSG_NOSIGNAL);
            if (count > 0) {
                sent += static_cast<std::size_t>(count);
                next += static_cast<std::size_t>(count);
            } else if (errno != EINTR) {
                ++next;
            }
        }
        return sent;
    }

    Descriptor _socket;
    unsigned _loopback;
    std::vector<Slot> _slots = std::vector<Slot>(batch);
    std::vector<mmsghdr> _received = std::vector<mmsghdr>(batch);
    std::vector<mmsghdr> _sent = std::vector<mmsghdr>(batch);
};

LoopbackSocket::LoopbackSocket(std::uint16_t port) : _system(std::make_unique<System>(port)) {}

LoopbackSocket::~LoopbackSocket() = default;

std::uint16_t LoopbackSocket::port() const
{
    sockaddr_in bound{};
    socklen_t size = sizeof bound;
    if (::getsockname(_system->descriptor(), reinterpret_cast<sockaddr*>(&bound), &size) != 0)
        fail("cannot learn the port");
    return ntohs(bound.sin_port);
}

LoopbackSocket::Counts LoopbackSocket::exchange(const Answer& answer)
{
    return _system->exchange(answer);
}

bool LoopbackSocket::send(ByteView datagram, const Ends& ends)
{
    return _system->sendOne(datagram, ends);
}

bool LoopbackSocket::sendFromOtherPort(ByteView datagram, const Ends& ends)
{
    const Descriptor other(openSocket());
    bindTo(other, ends.asked, 0);
    const sockaddr_in peer = systemAddress(ends.peer, ends.peerPort);
    return ::sendto(other, datagram.data(), datagram.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&peer),
                    sizeof peer) >= 0;
}

std::uint64_t LoopbackSocket::dropped() const
{
    std::array<std::uint32_t, SK_MEMINFO_VARS> memory{};
    socklen_t size = sizeof memory;
    if (::getsockopt(_system->descriptor(), SOL_SOCKET, SO_MEMINFO, memory.data(), &size) != 0)
        fail("cannot learn the dropped datagrams");
    return memory[SK_MEMINFO_DROPS];
}

std::intptr_t LoopbackSocket::handle() const
{
    return _system->descriptor();
}

} // namespace Lab
