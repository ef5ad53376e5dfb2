/// The socket library of Windows, which a process starts before it uses sockets. Windows only.
///
/// Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include <winsock2.h>
#include <ws2tcpip.h>

namespace Kep {

/// Starts the library, once for the process, which keeps it until it ends. Throws `std::system_error`.
void startWinsock();

/// What the system did not do last on this thread, as `std::system_error` with `operation` as its text.
[[noreturn]] void throwWinsockFailure(const char* operation);

/// A socket whose calls do not wait, connected to `port` of `address` (first octet in the most significant byte), or
/// INVALID_SOCKET, and the system's code says why. Throws `std::system_error` when the library cannot be started.
SOCKET connectUdp(std::uint32_t address, std::uint16_t port);

enum class Input {
    none,
    ready, ///< there is something to read, or reading tells what has failed
    failed ///< what has failed is told by `WSAGetLastError`
};

/// Sleeps until `socket` has something to read or has failed, at most that long. Throws `std::system_error` when the
/// system does not wait.
Input waitForInput(SOCKET socket, int milliseconds);

} // namespace Kep
