#include "Network.h"

#include "Allocations.h"
#include "Kep/Mutex.h"
#include "Kep/Net.h"
#include "kep/net/StatusReply.h"
#include "kep/snmp/Ber.h"
#include "net/UdpSocket.h"
#include "snmp/UdpSocket.h"

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
    explicit Socket(std::uint32_t to) : address(to) { ++sockets; }
    ~Socket() { --sockets; }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    std::uint32_t address;
    std::optional<Bytes> incoming;
};

Socket& socketOf(std::intptr_t handle)
{
    return *reinterpret_cast<Socket*>(handle);
}

std::intptr_t openSocket(SocketCall call, std::uint32_t address)
{
    const Spared spared;
    begin(call);
    return reinterpret_cast<std::intptr_t>(std::make_unique<Socket>(address).release());
}

void closeSocket(std::intptr_t handle)
{
    const std::unique_ptr<Socket> socket(&socketOf(handle));
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

std::uint16_t idOf(std::span<const std::uint8_t> request)
{
    return static_cast<std::uint16_t>(request[0] << 8 | request[1]);
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

namespace Kep::Snmp {

using namespace Faults;

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t) : handle_(openSocket(SocketCall::open, address)) {}

UdpSocket::~UdpSocket()
{
    closeSocket(handle_);
}

void UdpSocket::send(std::span<const unsigned char> packet)
{
    const Spared spared;
    begin(SocketCall::send);
    Socket& socket = socketOf(handle_);
    if (hostAt(socket.address) == printer || hostAt(socket.address) == otherAgent)
        socket.incoming = answerTo(Bytes(packet.begin(), packet.end()), socket.address);
}

bool UdpSocket::waitReadable(std::chrono::steady_clock::time_point)
{
    const Spared spared;
    begin(SocketCall::wait);
    return socketOf(handle_).incoming || hostAt(socketOf(handle_).address) == closedPort;
}

std::optional<std::size_t> UdpSocket::receive(std::span<unsigned char> buffer)
{
    const Spared spared;
    begin(SocketCall::receive);
    if (hostAt(socketOf(handle_).address) == closedPort)
        throw std::system_error(std::make_error_code(std::errc::connection_refused));
    return take(socketOf(handle_), buffer);
}

} // namespace Kep::Snmp

namespace Kep::Net {

using namespace Faults;

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t) : handle_(openSocket(SocketCall::nodeOpen, address)) {}

UdpSocket::~UdpSocket()
{
    closeSocket(handle_);
}

UdpSocket::Outcome UdpSocket::send(std::span<const std::uint8_t> datagram)
{
    const Spared spared;
    begin(SocketCall::nodeSend);
    Socket& socket = socketOf(handle_);
    const auto reply = Testing::StatusReply(idOf(datagram)).add(nameOf(socket.address), 0).bytes();
    socket.incoming = Bytes(reply.begin(), reply.end());
    return Outcome::done;
}

UdpSocket::Outcome UdpSocket::receive(std::span<std::uint8_t> buffer, std::chrono::steady_clock::time_point,
                                      std::size_t& size)
{
    const Spared spared;
    begin(SocketCall::nodeReceive);
    const auto received = take(socketOf(handle_), buffer);
    size = received.value_or(0);
    return received ? Outcome::done : Outcome::timeout;
}

} // namespace Kep::Net
