#include "snmp/UsmSecurity.h"

namespace Kep::Snmp {

namespace {

int levelOf(const UsmKeys& keys)
{
    if (!keys.authentication)
        return SNMP_SEC_LEVEL_NOAUTH;
    return keys.privacy ? SNMP_SEC_LEVEL_AUTHPRIV : SNMP_SEC_LEVEL_AUTHNOPRIV;
}

} // namespace

UsmSecurity::UsmSecurity(const ProfileV3& profile, const UsmKeys& keys, EngineId engine, EngineClock clock)
    : userName_(profile.userName), context_(profile.context), engine_(std::move(engine)), clock_(clock),
      user_(profile, keys, engine_), level_(levelOf(keys))
{}

void UsmSecurity::describe(netsnmp_session& settings)
{
    settings.version = SNMP_VERSION_3;
    settings.securityModel = SNMP_SEC_MODEL_USM;
    settings.securityLevel = level_;
    settings.securityName = userName_.data();
    settings.securityNameLen = userName_.size();
    settings.securityEngineID = engine_.data();
    settings.securityEngineIDLen = engine_.size();
    settings.contextName = context_.data();
    settings.contextNameLen = context_.size();
    settings.flags |= SNMP_FLAGS_USER_CREATED; // otherwise the library would make a user of its own and keep it
}

bool UsmSecurity::complete(netsnmp_pdu& /*request*/)
{
    resynchronised_ = false;
    return true;
}

void UsmSecurity::enter()
{
    user_.list();
    clock_.restore(engine_);
}

void UsmSecurity::leave() noexcept
{
    clock_ = EngineClock::load(engine_);
    free_etimelist(); // replies name engines as they like, and the library notes each
    user_.unlist();
}

bool UsmSecurity::accepts(const netsnmp_pdu& /*response*/) const
{
    return true; // the library has compared user, engine, context, level and message ID, and checked the digest
}

ReportVerdict UsmSecurity::onReport(netsnmp_pdu& report)
{
    if (reportKind(report) != SNMPERR_NOT_IN_TIME_WINDOW || resynchronised_)
        return ReportVerdict::refused;
    resynchronised_ = true;
    return ReportVerdict::resend;
}

} // namespace Kep::Snmp
