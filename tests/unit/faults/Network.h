/// A network in memory, in place of the framework's sockets: agents that answer at once, and failures on command.
///
/// The host at an address is what its last octet says: divisible by 4 a printer, one above that an agent that is no
/// printer, two above a host whose port is closed, three above one that does not answer. No time passes in waiting.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace Faults {

/// What the framework asks of a socket. `nodeOpen` to `nodeReceive` are those of the NetBIOS query.
enum class SocketCall { open, send, wait, receive, nodeOpen, nodeSend, nodeWait, nodeReceive };

/// While one lives, `hook` is called at the beginning of each call of a socket, on the thread that makes it; what it
/// throws passes. One at a time in the process.
class SocketHook {
public:
    explicit SocketHook(std::function<void(SocketCall)> hook);
    ~SocketHook();
    SocketHook(const SocketHook&) = delete;
    SocketHook& operator=(const SocketHook&) = delete;
};

/// Sockets that are open.
std::size_t openSockets();

bool isPrinter(std::uint32_t address);

/// What the printer at an address is found to be, as the status document has it.
std::string printerDocument(std::uint32_t address);

} // namespace Faults
