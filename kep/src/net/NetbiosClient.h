/// Asks a node for its NetBIOS names.
#pragma once

#include <cstdint>
#include <string>

namespace Kep::Net {

/// The machine name of the node at `address` (first octet in the most significant byte), asked over UDP at `port`:
/// 2 tries of 0.5 s each, ended at once by a closed port. Empty when there is none. Blocks the caller. Any thread, no
/// lock. Throws `GenericException` when no socket is to be had.
std::string askNodeStatus(std::uint32_t address, std::uint16_t port);

} // namespace Kep::Net
