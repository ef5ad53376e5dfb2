#include "snmp/Reports.h"

namespace Kep::Snmp {

int reportKind(netsnmp_pdu& report)
{
    return snmpv3_get_report_type(&report);
}

Refusal refusalOf(int kind)
{
    using Host::Outcome;
    switch (kind) {
    case SNMPERR_UNKNOWN_USER_NAME:
        return {Outcome::WrongCredentials, "the agent reports: unknown user name"};
    case SNMPERR_AUTHENTICATION_FAILURE:
        return {Outcome::WrongCredentials, "the agent reports: wrong digest (authentication password or protocol)"};
    case SNMPERR_UNSUPPORTED_SEC_LEVEL:
        return {Outcome::WrongCredentials, "the agent reports: unsupported security level"};
    case SNMPERR_DECRYPTION_ERR:
        return {Outcome::WrongCredentials, "the agent reports: decryption error (privacy password or protocol)"};
    case SNMPERR_BAD_CONTEXT:
        return {Outcome::WrongCredentials, "the agent reports: unknown or unavailable context"};
    case SNMPERR_UNKNOWN_ENG_ID:
        return {Outcome::Failed, "the agent reports: unknown engine ID"};
    case SNMPERR_NOT_IN_TIME_WINDOW:
        return {Outcome::Failed, "the agent reports: not in time window"};
    case SNMPERR_UNKNOWN_SEC_MODEL:
        return {Outcome::Failed, "the agent reports: unknown security model"};
    case SNMPERR_INVALID_MSG:
        return {Outcome::Failed, "the agent reports: invalid message"};
    case SNMPERR_BAD_VERSION:
        return {Outcome::Failed, "the agent reports: unknown PDU handler"};
    default:
        return {Outcome::Failed, "the agent sent a report of an unknown kind"};
    }
}

} // namespace Kep::Snmp
