#include "net/UdpSocket.h"

#include "Kep/Exception.h"
#include "base/Winsock.h"

#include <algorithm>
#include <system_error>

namespace Kep::Net {
namespace {

using std::chrono::steady_clock;

// A peer that cannot be reached shows when sending, as elsewhere.
std::intptr_t openSocket(std::uint32_t address, std::uint16_t port)
{
    const SOCKET handle = connectUdp(address, port);
    const int error = WSAGetLastError();
    const bool hasNoWay = error == WSAENETUNREACH || error == WSAEHOSTUNREACH || error == WSAEADDRNOTAVAIL ||
                          error == WSAEACCES || error == WSAEINVAL;
    if (handle == INVALID_SOCKET && !hasNoWay) {
        throw GenericException("no socket for a NetBIOS query: " + std::system_category().message(error));
    }
    return static_cast<std::intptr_t>(handle);
}

// The system drops a datagram, as any network may.
bool isTransient(int error)
{
    return error == WSAEWOULDBLOCK || error == WSAEINTR || error == WSAENOBUFS;
}

// Milliseconds until `deadline`, rounded up, so that a wait never ends before it.
int millisecondsUntil(steady_clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 60'000));
}

} // namespace

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t port) : handle_(openSocket(address, port))
{
    reachable_ = static_cast<SOCKET>(handle_) != INVALID_SOCKET;
}

UdpSocket::~UdpSocket()
{
    if (reachable_) {
        ::closesocket(static_cast<SOCKET>(handle_));
    }
}

UdpSocket::Outcome UdpSocket::send(std::span<const std::uint8_t> datagram)
{
    if (!reachable_) {
        return Outcome::closed;
    }
    const auto* bytes = reinterpret_cast<const char*>(datagram.data());
    const int size = ::send(static_cast<SOCKET>(handle_), bytes, static_cast<int>(datagram.size()), 0);
    return size >= 0 || isTransient(WSAGetLastError()) ? Outcome::done : Outcome::closed;
}

UdpSocket::Outcome UdpSocket::receive(std::span<std::uint8_t> buffer, steady_clock::time_point deadline,
                                      std::size_t& size)
{
    const auto handle = static_cast<SOCKET>(handle_);
    for (;;) {
        const int count = ::recv(handle, reinterpret_cast<char*>(buffer.data()), static_cast<int>(buffer.size()), 0);
        const int error = count >= 0 ? 0 : WSAGetLastError();
        if (count >= 0 || error == WSAEMSGSIZE) { // the latter is one that was cut
            size = count >= 0 ? static_cast<std::size_t>(count) : buffer.size();
            return Outcome::done;
        }
        if (!isTransient(error)) {
            return Outcome::closed;
        }
        if (steady_clock::now() >= deadline) {
            return Outcome::timeout;
        }
        if (waitForInput(handle, millisecondsUntil(deadline)) == Input::failed) {
            return Outcome::closed;
        }
    }
}

} // namespace Kep::Net
