/// SNMPv1 and SNMPv2c: a community name, in the clear.
#pragma once

#include "snmp/Security.h"

#include <string>

namespace Kep::Snmp {

class CommunitySecurity final : public Security {
public:
    /// `version` is SNMP_VERSION_1 or SNMP_VERSION_2c; `community` has at most 255 bytes.
    CommunitySecurity(long version, std::string community);

    void describe(netsnmp_session& settings) override;
    bool complete(netsnmp_pdu& request) override KEP_REQUIRES(libraryMutex);
    void enter() override KEP_REQUIRES(libraryMutex) {}
    void leave() noexcept override KEP_REQUIRES(libraryMutex) {}
    bool accepts(const netsnmp_pdu& response) const override;
    ReportVerdict onReport(netsnmp_pdu& report) override KEP_REQUIRES(libraryMutex);
    bool renewsTries() const override { return false; }

private:
    const long version_;
    std::string community_;
};

} // namespace Kep::Snmp
