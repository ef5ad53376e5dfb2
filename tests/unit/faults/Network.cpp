#include "Network.h"

#include "Allocations.h"
#include "Kep/Mutex.h"
#include "Kep/Net.h"
#include "kep/net/StatusReply.h"
#include "kep/snmp/Ber.h"
#include "net/UdpSocket.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace Faults {
namespace {

using Ber::Bytes;

constexpr const char* deviceTypes = ".1.3.6.1.2.1.25.3.2.1.2";
constexpr const char* printerType = ".1.3.6.1.2.1.25.3.1.5";
constexpr const char* description = ".1.3.6.1.2.1.25.3.2.1.3.1";
constexpr const char* firstMac = ".1.3.6.1.2.1.2.2.1.6.1";
constexpr const char* serialNumber = ".1.3.6.1.2.1.43.5.1.1.17.1";
constexpr const char* beyondDeviceTypes = ".1.3.6.1.2.1.25.3.2.1.3.1";
constexpr const char* unknownEngines = ".1.3.6.1.6.3.15.1.1.4.0";
constexpr std::uint16_t netbiosPort = 137;
constexpr const char* engineId = "\x80zero";

enum Host { printer, otherAgent, closedPort, silent };

Host hostAt(std::uint32_t address)
{
    return static_cast<Host>((address & 0xFF) % 4);
}

std::string nameOf(std::uint32_t address)
{
    return "PRINTER-" + std::to_string(address & 0xFF);
}

Bytes macOf(std::uint32_t address)
{
    return Bytes("\x00\x1B\xA9\x0C\x33", 5) + static_cast<char>(address & 0xFF);
}

Bytes valueOf(const std::string& oid, std::uint32_t address)
{
    if (oid == description)
        return Ber::octets("the printer of the test");
    if (oid == firstMac)
        return Ber::octets(macOf(address));
    if (oid == serialNumber)
        return Ber::octets("SN" + std::to_string(address & 0xFF));
    return Ber::tlv(Ber::noSuchObjectTag, "");
}

Ber::Pdu answerTo(Ber::Pdu pdu, std::uint32_t address)
{
    const std::string oid = pdu.firstOid();
    if (pdu.tag == Ber::getTag)
        pdu.bindings = {Ber::binding(oid, valueOf(oid, address))};
    else if (hostAt(address) == printer)
        pdu.bindings = {Ber::binding(std::string(deviceTypes) + ".1", Ber::oid(printerType))};
    else
        pdu.bindings = {Ber::binding(beyondDeviceTypes, Ber::octets("a server"))};
    pdu.tag = Ber::responseTag;
    return pdu;
}

Bytes answerOfVersion3(const Bytes& request, std::uint32_t address)
{
    Ber::V3Message message = Ber::V3Message::decode(request);
    if (message.engine.empty()) {
        message.pdu.tag = Ber::reportTag;
        message.pdu.bindings = {Ber::binding(unknownEngines, Ber::tlv(0x41, "\x01"))};
    } else {
        message.pdu = answerTo(message.pdu, address);
    }
    message.flags = 0;
    message.engine = message.contextEngine = engineId;
    message.boots = message.time = 1;
    return message.encoded();
}

Bytes answerTo(const Bytes& request, std::uint32_t address)
{
    Ber::Reader outer(request);
    Ber::Reader fields(outer.take(Ber::sequenceTag));
    if (fields.takeInteger() == 3)
        return answerOfVersion3(request, address);
    Ber::Message message = Ber::Message::decode(request);
    message.pdu = answerTo(message.pdu, address);
    return message.encoded();
}

struct Hook {
    Kep::Mutex mutex;
    std::function<void(SocketCall)> function KEP_GUARDED_BY(mutex);
};

Hook& hook()
{
    static Hook one;
    return one;
}

void begin(SocketCall call)
{
    std::function<void(SocketCall)> function;
    {
        const Kep::MutexLock lock(hook().mutex);
        function = hook().function;
    }
    if (function)
        function(call);
}

std::atomic<std::size_t> sockets{0};

struct Socket {
    Socket(std::uint32_t to, bool node) : address(to), isNode(node) { ++sockets; }
    ~Socket() { --sockets; }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    std::uint32_t address;
    bool isNode; // of a NetBIOS query
    std::optional<Bytes> incoming;
};

Socket& socketOf(std::intptr_t handle)
{
    return *reinterpret_cast<Socket*>(handle);
}

std::intptr_t openSocket(std::uint32_t address, bool isNode)
{
    const Spared spared;
    begin(isNode ? SocketCall::nodeOpen : SocketCall::open);
    return reinterpret_cast<std::intptr_t>(std::make_unique<Socket>(address, isNode).release());
}

std::optional<std::size_t> take(Socket& socket, std::span<unsigned char> buffer)
{
    if (!socket.incoming)
        return std::nullopt;
    const std::size_t size = std::min(buffer.size(), socket.incoming->size());
    std::copy_n(socket.incoming->begin(), size, buffer.begin());
    socket.incoming.reset();
    return size;
}

Bytes answerOfNode(std::span<const unsigned char> request, std::uint32_t address)
{
    const auto id = static_cast<std::uint16_t>(request[0] << 8 | request[1]);
    const auto reply = Kep::Testing::StatusReply(id).add(nameOf(address), 0).bytes();
    return Bytes(reply.begin(), reply.end());
}

} // namespace

SocketHook::SocketHook(std::function<void(SocketCall)> function)
{
    const Kep::MutexLock lock(hook().mutex);
    hook().function = std::move(function);
}

SocketHook::~SocketHook()
{
    const Kep::MutexLock lock(hook().mutex);
    hook().function = nullptr;
}

std::size_t openSockets()
{
    return sockets.load();
}

bool isPrinter(std::uint32_t address)
{
    return hostAt(address) == printer;
}

std::string printerDocument(std::uint32_t address)
{
    const auto last = std::to_string(address & 0xFF);
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::string mac = std::string("00-1B-A9-0C-33-") + digits[address >> 4 & 0xF] + digits[address & 0xF];
    return R"({"hostname":")" + nameOf(address) + R"(","ip":")" + Kep::Net::formatIpAddress(address) + R"(","mac":[")" +
           mac + R"("],"name":"the printer of the test","sn":"SN)" + last + R"("})";
}

} // namespace Faults

namespace Kep::Net {

using namespace Faults;

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t port) : handle_(openSocket(address, port == netbiosPort)) {}

UdpSocket::~UdpSocket()
{
    const std::unique_ptr<Socket> socket(&socketOf(handle_));
}

void UdpSocket::send(std::span<const unsigned char> packet)
{
    const Spared spared;
    Socket& socket = socketOf(handle_);
    begin(socket.isNode ? SocketCall::nodeSend : SocketCall::send);
    if (socket.isNode)
        socket.incoming = answerOfNode(packet, socket.address);
    else if (hostAt(socket.address) == printer || hostAt(socket.address) == otherAgent)
        socket.incoming = answerTo(Bytes(packet.begin(), packet.end()), socket.address);
}

bool UdpSocket::waitReadable(std::chrono::steady_clock::time_point)
{
    const Spared spared;
    const Socket& socket = socketOf(handle_);
    begin(socket.isNode ? SocketCall::nodeWait : SocketCall::wait);
    return socket.incoming || hostAt(socket.address) == closedPort;
}

std::optional<std::size_t> UdpSocket::receive(std::span<unsigned char> buffer)
{
    const Spared spared;
    Socket& socket = socketOf(handle_);
    begin(socket.isNode ? SocketCall::nodeReceive : SocketCall::receive);
    if (hostAt(socket.address) == closedPort)
        throw std::system_error(std::make_error_code(std::errc::connection_refused));
    return take(socket, buffer);
}

bool isShortage(const std::error_code&)
{
    return false;
}

} // namespace Kep::Net
