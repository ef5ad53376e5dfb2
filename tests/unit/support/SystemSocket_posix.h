/// What is particular to the sockets of POSIX systems.
#pragma once

#include <cerrno>
#include <cstddef>
#include <system_error>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace TestSupport {

using SystemSocket = int;
using AddressSize = socklen_t;
using DataSize = std::size_t;

/// A UDP socket over IPv4; -1 when there is none to have.
inline SystemSocket openSocket()
{
    return ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
}

inline void closeSocket(SystemSocket socket)
{
    ::close(socket);
}

/// Why the last call failed.
inline std::error_code lastError()
{
    return {errno, std::generic_category()};
}

inline bool isReadable(SystemSocket socket, int milliseconds)
{
    pollfd wanted{socket, POLLIN, 0};
    return ::poll(&wanted, 1, milliseconds) > 0;
}

} // namespace TestSupport
