/// What a resolver needs of the system: a wait for its sockets, and the system's form of a host's entry.
///
/// Any thread, a channel by one at a time; no lock. Throws nothing.
#pragma once

#include <ares.h>

#include <chrono>
#include <span>
#include <string_view>

namespace Kep::Net {

/// The official name in an entry, which owns it; empty when it has none.
std::string_view officialName(const hostent& host);

struct ResolverSocket {
    ares_socket_t handle;
    bool read;  ///< whether to wait for it to be readable; after the wait, whether it is, or has failed
    bool write; ///< the same of writing
};

/// Waits until one of the sockets, of which there are at most `ARES_GETSOCK_MAXNUM`, is ready, at most `timeout`.
/// Descriptors may be of any size.
void waitForSockets(std::span<ResolverSocket> sockets, std::chrono::milliseconds timeout);

} // namespace Kep::Net
