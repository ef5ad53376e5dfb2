#include "snmp/Reports.h"

namespace Kep::Snmp {

int reportKind(netsnmp_pdu& report)
{
    return snmpv3_get_report_type(&report);
}

std::string reportText(int kind)
{
    switch (kind) {
    case SNMPERR_UNKNOWN_USER_NAME:
        return "the agent reports: unknown user name";
    case SNMPERR_AUTHENTICATION_FAILURE:
        return "the agent reports: wrong digest (authentication password or protocol)";
    case SNMPERR_UNSUPPORTED_SEC_LEVEL:
        return "the agent reports: unsupported security level";
    case SNMPERR_UNKNOWN_ENG_ID:
        return "the agent reports: unknown engine ID";
    case SNMPERR_NOT_IN_TIME_WINDOW:
        return "the agent reports: not in time window";
    case SNMPERR_DECRYPTION_ERR:
        return "the agent reports: decryption error (privacy password or protocol)";
    case SNMPERR_BAD_CONTEXT:
        return "the agent reports: unknown or unavailable context";
    case SNMPERR_UNKNOWN_SEC_MODEL:
        return "the agent reports: unknown security model";
    case SNMPERR_INVALID_MSG:
        return "the agent reports: invalid message";
    case SNMPERR_BAD_VERSION:
        return "the agent reports: unknown PDU handler";
    default:
        return "the agent sent a report of an unknown kind";
    }
}

} // namespace Kep::Snmp
