/// Makes SNMP sessions.
#pragma once

#include "Kep/Export.h"
#include "Kep/Snmp/Profile.h"
#include "Kep/Snmp/Session.h"
#include "Kep/Snmp/V3Engine.h"

#include <memory>

namespace Kep::Snmp {

/// Bound to an engine, which it shares. Used by one thread at a time; cheap to make.
class KEP_API Factory {
public:
    explicit Factory(std::shared_ptr<V3Engine> engine);
    ~Factory();

    /// A new session that talks as `profile` says and shares it. Never fails for what the profile holds: `open` does.
    /// No traffic. Throws only `std::bad_alloc`.
    std::shared_ptr<Session> create(const std::shared_ptr<Profile>& profile);

private:
    std::shared_ptr<V3Engine> engine_;
};

} // namespace Kep::Snmp
