/// What SNMPv3 agents report instead of answering.
#pragma once

#include "Kep/Host/Outcomes.h"
#include "snmp/Library.h"

#include <string>

namespace Kep::Snmp {

/// What a security layer makes of a Report-PDU (RFC 3412, section 7.2).
enum class ReportVerdict {
    ignored,   ///< not for us: the request waits on
    satisfied, ///< the request has what it asked for
    resend,    ///< the request is to be sent again, corrected by what the report told the library
    refused,   ///< the agent will not answer this request
};

/// The library's number for what `report` reports.
int reportKind(netsnmp_pdu& report) KEP_REQUIRES(libraryMutex);

/// Why an agent will not answer a request.
struct Refusal {
    Host::Outcome outcome = Host::Outcome::Failed; ///< `WrongCredentials` if that is what it says
    std::string text;                              ///< for people
};

/// What a report of a kind says.
Refusal refusalOf(int kind);

} // namespace Kep::Snmp
