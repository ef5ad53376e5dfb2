/// A user of the user-based security model at one agent (RFC 3414, section 2.1).
#pragma once

#include "Kep/Snmp/Profile.h"
#include "snmp/EngineClock.h"
#include "snmp/KeyCache.h"

namespace Kep::Snmp {

/// The keys of a user before they are bound to an engine; null where the security level needs none.
struct UsmKeys {
    KeyCache::Key authentication;
    KeyCache::Key privacy;
};

/// The library's record of the user, with the keys bound to the agent's engine. It is in the library's process-wide
/// list only while it is used: the list is searched linearly, never re-keys a user, and would grow with each agent.
class UsmUser {
public:
    /// Requires a checked profile. Throws `Exception` when the keys cannot be bound.
    UsmUser(const ProfileV3& profile, const UsmKeys& keys, const EngineId& engine) KEP_EXCLUDES(libraryMutex);
    ~UsmUser() KEP_EXCLUDES(libraryMutex);
    UsmUser(const UsmUser&) = delete;
    UsmUser& operator=(const UsmUser&) = delete;

    void list() KEP_REQUIRES(libraryMutex);
    void unlist() noexcept KEP_REQUIRES(libraryMutex);

private:
    usmUser* user_ = nullptr; // the library's to free
};

} // namespace Kep::Snmp
