/// The process-wide SNMP engine.
#pragma once

#include "Kep/Export.h"

#include <memory>

namespace Kep::Snmp {

/// Stands for what all sessions of the process share: the initialised SNMP library and the keys derived from
/// passwords. Any thread; it synchronises itself.
class KEP_API V3Engine {
public:
    virtual ~V3Engine();

    /// The one engine, made on first use and shared by all callers. Throws `Exception` when the SNMP library cannot
    /// be initialised.
    static std::shared_ptr<V3Engine> get();

protected:
    V3Engine() = default;
    V3Engine(const V3Engine&) = delete;
    V3Engine& operator=(const V3Engine&) = delete;
};

} // namespace Kep::Snmp
