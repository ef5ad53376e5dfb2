/// Which profiles can work.
#pragma once

#include "Kep/Snmp/Profile.h"

namespace Kep::Snmp {

/// Throws `Exception` when no session can talk as `profile` says, with a message that says why and quotes no secret:
/// passwords under 8 bytes (RFC 3414, section 11.2), privacy without authentication, protocols that the engine does
/// not offer, names that do not fit their fields, port 0.
void checkProfile(const Profile& profile);

} // namespace Kep::Snmp
