#include "net/UdpSocket.h"

#include "base/Winsock.h"

#include <algorithm>
#include <array>
#include <climits>

namespace Kep::Net {

namespace {

SOCKET openSocket(std::uint32_t address, std::uint16_t port)
{
    const SOCKET handle = connectUdp(address, port);
    if (handle == INVALID_SOCKET) {
        throwWinsockFailure("connect");
    }
    return handle;
}

int pollTimeout(std::chrono::steady_clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, INT_MAX));
}

} // namespace

UdpSocket::UdpSocket(std::uint32_t address, std::uint16_t port)
    : handle_(static_cast<std::intptr_t>(openSocket(address, port)))
{}

UdpSocket::~UdpSocket()
{
    ::closesocket(static_cast<SOCKET>(handle_));
}

void UdpSocket::send(std::span<const unsigned char> packet)
{
    const auto* bytes = reinterpret_cast<const char*>(packet.data());
    if (::send(static_cast<SOCKET>(handle_), bytes, static_cast<int>(packet.size()), 0) >= 0) {
        return;
    }
    const int error = WSAGetLastError();
    if (error != WSAEWOULDBLOCK && error != WSAENOBUFS) {
        throwWinsockFailure("send");
    }
}

bool UdpSocket::waitReadable(std::chrono::steady_clock::time_point deadline)
{
    for (;;) {
        const Input input = waitForInput(static_cast<SOCKET>(handle_), pollTimeout(deadline));
        if (input == Input::failed) {
            throwWinsockFailure("poll");
        }
        if (input == Input::ready) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
    }
}

std::optional<std::size_t> UdpSocket::receive(std::span<unsigned char> buffer)
{
    auto* bytes = reinterpret_cast<char*>(buffer.data());
    const int size = ::recv(static_cast<SOCKET>(handle_), bytes, static_cast<int>(buffer.size()), 0);
    if (size >= 0) {
        return static_cast<std::size_t>(size);
    }
    const int error = WSAGetLastError();
    if (error == WSAEMSGSIZE) {
        return buffer.size();
    }
    if (error != WSAEWOULDBLOCK) {
        throwWinsockFailure("recv");
    }
    return std::nullopt;
}

bool isShortage(const std::error_code& error)
{
    constexpr std::array<long, 6> shortages = {WSAEMFILE,
                                               WSAENOBUFS,
                                               WSAEADDRINUSE,
                                               WSA_NOT_ENOUGH_MEMORY,
                                               ERROR_TOO_MANY_OPEN_FILES,
                                               ERROR_NO_SYSTEM_RESOURCES};
    return error.category() == std::system_category() && std::ranges::find(shortages, error.value()) != shortages.end();
}

} // namespace Kep::Net
