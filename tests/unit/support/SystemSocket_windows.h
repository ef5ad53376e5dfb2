/// What is particular to the sockets of Windows.
#pragma once

#include <system_error>

#include <winsock2.h>
#include <ws2tcpip.h>

namespace TestSupport {

using SystemSocket = SOCKET;
using AddressSize = int;
using DataSize = int;

/// A UDP socket over IPv4; -1 when there is none to have.
inline SystemSocket openSocket()
{
    WSADATA description{};
    static const int error = WSAStartup(MAKEWORD(2, 2), &description);
    return error == 0 ? ::socket(AF_INET, SOCK_DGRAM, 0) : INVALID_SOCKET;
}

inline void closeSocket(SystemSocket socket)
{
    ::closesocket(socket);
}

/// Why the last call failed.
inline std::error_code lastError()
{
    return {WSAGetLastError(), std::system_category()};
}

inline bool isReadable(SystemSocket socket, int milliseconds)
{
    fd_set wanted;
    FD_ZERO(&wanted);
    FD_SET(socket, &wanted);
    timeval time{milliseconds / 1000, milliseconds % 1000 * 1000};
    return ::select(0, &wanted, nullptr, nullptr, &time) > 0;
}

} // namespace TestSupport
