/// The time of an agent's SNMPv3 engine, as the library keeps it (RFC 3414, section 2.3).
#pragma once

#include "snmp/Library.h"

#include <ctime>
#include <vector>

namespace Kep::Snmp {

/// Identifies an agent's SNMPv3 engine, 1 to 32 bytes (RFC 3411, section 5).
using EngineId = std::vector<unsigned char>;

/// A note of it, so that the library's own list need not grow with the number of agents.
struct EngineClock {
    unsigned boots = 0;
    unsigned time = 0;          ///< seconds, when last received
    std::time_t received = 0;   ///< when that was, in the library's seconds
    bool authenticated = false; ///< whether it came in a message that the agent signed

    /// What the library knows about `engine`; zeros when nothing.
    static EngineClock load(const EngineId& engine) KEP_REQUIRES(libraryMutex);

    /// Makes the library know it.
    void restore(const EngineId& engine) const KEP_REQUIRES(libraryMutex);
};

} // namespace Kep::Snmp
