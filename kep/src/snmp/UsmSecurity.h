/// SNMPv3 with the user-based security model (RFC 3414).
#pragma once

#include "snmp/Security.h"
#include "snmp/UsmUser.h"

#include <string>

namespace Kep::Snmp {

/// Keeps the agent's engine time from message to message, and follows one report per request that says that it is out
/// of the time window (RFC 3414, section 3.2 (7)).
class UsmSecurity final : public Security {
public:
    /// `clock` is what discovery told about `engine`. Requires a checked profile. Throws as `UsmUser` does.
    UsmSecurity(const ProfileV3& profile, const UsmKeys& keys, EngineId engine, EngineClock clock);

    void describe(netsnmp_session& settings) override;
    bool complete(netsnmp_pdu& request) override KEP_REQUIRES(libraryMutex);
    void enter() override KEP_REQUIRES(libraryMutex);
    void leave() noexcept override KEP_REQUIRES(libraryMutex);
    bool accepts(const netsnmp_pdu& response) const override;
    ReportVerdict onReport(netsnmp_pdu& report) override KEP_REQUIRES(libraryMutex);
    bool renewsTries() const override { return true; }

private:
    std::string userName_;
    std::string context_;
    EngineId engine_;
    EngineClock clock_;
    UsmUser user_;
    int level_;
    bool resynchronised_ = false; // for the request under way
};

} // namespace Kep::Snmp
