#include "base/Winsock.h"

#include <system_error>

namespace Kep {
namespace {

int start()
{
    WSADATA description{};
    return WSAStartup(MAKEWORD(2, 2), &description);
}

bool hasFailed(SOCKET socket)
{
    int error = 0;
    int size = sizeof error;
    if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size) != 0 || error == 0) {
        return false;
    }
    WSASetLastError(error);
    return true;
}

} // namespace

void startWinsock()
{
    static const int error = start();
    if (error != 0) {
        throw std::system_error(error, std::system_category(), "WSAStartup");
    }
}

void throwWinsockFailure(const char* operation)
{
    const int error = WSAGetLastError();
    // What comes back from a closed port is a reset here.
    if (error == WSAECONNRESET || error == WSAECONNREFUSED) {
        throw std::system_error(std::make_error_code(std::errc::connection_refused), operation);
    }
    throw std::system_error(error, std::system_category(), operation);
}

SOCKET connectUdp(std::uint32_t address, std::uint16_t port)
{
    startWinsock();
    const SOCKET handle =
        ::WSASocketW(AF_INET, SOCK_DGRAM, IPPROTO_UDP, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (handle == INVALID_SOCKET) {
        return handle;
    }
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = htonl(address);
    u_long withoutWaiting = 1;
    if (::ioctlsocket(handle, static_cast<long>(FIONBIO), &withoutWaiting) == 0 &&
        ::connect(handle, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0) {
        return handle;
    }
    const int error = WSAGetLastError();
    ::closesocket(handle);
    WSASetLastError(error);
    return INVALID_SOCKET;
}

Input waitForInput(SOCKET socket, int milliseconds)
{
    // A failure may have come already, and under Wine it does not end the wait.
    if (hasFailed(socket)) {
        return Input::failed;
    }
    WSAPOLLFD wanted{};
    wanted.fd = socket;
    wanted.events = POLLRDNORM;
    const int ready = ::WSAPoll(&wanted, 1, milliseconds);
    if (ready < 0) {
        throwWinsockFailure("poll");
    }
    if (hasFailed(socket)) {
        return Input::failed;
    }
    return ready > 0 ? Input::ready : Input::none;
}

} // namespace Kep
