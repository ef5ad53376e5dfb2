/// What became of the addresses that SNMP sessions were opened to.
#pragma once

#include "Kep/Export.h"
#include "Kep/Host/Call.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace Kep::Host {

/// Ascending: of several observations of one address, the greatest tells most about it.
enum class Outcome : std::uint8_t {
    Silent,           ///< nothing was heard; a wrong community of SNMPv1 and v2c sounds the same
    Unreachable,      ///< the network reported that host or network cannot be reached
    PortClosed,       ///< the host reported that nothing listens at the port
    WrongCredentials, ///< the agent refused the user, a key, the level or the context
    Failed,           ///< there is an agent, but its answers failed, were malformed, or ceased
    Answered,         ///< every request had its proper answer
};

/// How one session ended.
struct Observation {
    CallId call = 0;           ///< under which it was opened; 0 when it belongs to none
    std::uint32_t address = 0; ///< most significant byte first octet
    Outcome outcome = Outcome::Silent;
    std::string_view problem; ///< for people; of the first request that failed, else empty; never holds a secret
};

class KEP_API IOutcomeObserver {
public:
    virtual ~IOutcomeObserver();

    /// Called at the end of every session that had asked something, on its thread, from many threads at once, and so
    /// to return soon. The texts last as long as the call.
    virtual void observe(const Observation& observation) noexcept = 0;
};

/// Has `observer` told of all sessions of the process from now on, in place of the observer before; null: none. The
/// one before may still be told of sessions that end at the same time. Any thread.
KEP_API void observeOutcomes(std::shared_ptr<IOutcomeObserver> observer);

} // namespace Kep::Host
