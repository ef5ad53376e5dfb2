/// Finds out an agent's SNMPv3 engine (RFC 3414, section 4).
#pragma once

#include "snmp/EngineClock.h"
#include "snmp/Security.h"

namespace Kep::Snmp {

/// The protection of the discovery request, which is none: no user, no engine, no authentication. The agent's report
/// tells its engine ID, and as a rule its boots and time.
class EngineDiscovery final : public Security {
public:
    void describe(netsnmp_session& settings) override;
    bool complete(netsnmp_pdu& request) override KEP_REQUIRES(libraryMutex);
    void enter() override KEP_REQUIRES(libraryMutex) {}
    void leave() noexcept override KEP_REQUIRES(libraryMutex);
    bool accepts(const netsnmp_pdu& response) const override;
    ReportVerdict onReport(netsnmp_pdu& report) override KEP_REQUIRES(libraryMutex);
    bool renewsTries() const override { return true; }

    /// What the agent told. Requires a finished exchange.
    const EngineId& engine() const noexcept { return engine_; }
    const EngineClock& clock() const noexcept { return clock_; }

private:
    EngineId engine_;
    EngineClock clock_;
};

} // namespace Kep::Snmp
