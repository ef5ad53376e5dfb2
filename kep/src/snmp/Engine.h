/// What `V3Engine` stands for.
#pragma once

#include "Kep/Snmp/V3Engine.h"
#include "snmp/KeyCache.h"

namespace Kep::Snmp {

/// The initialised library and the keys. Any thread.
class Engine final : public V3Engine {
public:
    /// Throws `Exception` when the library cannot be initialised.
    Engine();

    KeyCache& keys() noexcept { return keys_; }

private:
    KeyCache keys_;
};

} // namespace Kep::Snmp
