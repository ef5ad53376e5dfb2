/// What a resolver needs of the system: sockets to wait for, and its form of a host's entry.
///
/// Any thread, a channel by one at a time; no lock. Throws nothing.
#pragma once

#include <ares.h>

#include <chrono>
#include <cstdint>
#include <string_view>

namespace Kep::Net {

/// Has the channel look up the names of `address` (first octet in the most significant byte). `callback` is called
/// with `argument` once, possibly before this returns, at the latest when the channel is destroyed.
void startReverseLookup(ares_channel channel, std::uint32_t address, ares_host_callback callback, void* argument);

/// The official name in an entry, which owns it; empty when it has none.
std::string_view officialName(const hostent& host);

/// Waits until one of the channel's sockets is ready, at most `timeout`, and has the channel process what there is,
/// its time-outs included. Descriptors may be of any size.
void processResolver(ares_channel channel, std::chrono::milliseconds timeout);

} // namespace Kep::Net
