#include "snmp/EngineDiscovery.h"

#include "Kep/Snmp/Exception.h"

namespace Kep::Snmp {

void EngineDiscovery::describe(netsnmp_session& settings)
{
    settings.version = SNMP_VERSION_3;
    settings.securityModel = SNMP_SEC_MODEL_USM;
    settings.securityLevel = SNMP_SEC_LEVEL_NOAUTH;
}

bool EngineDiscovery::complete(netsnmp_pdu& request)
{
    request.securityName = static_cast<char*>(netsnmp_memdup("", 1));
    return request.securityName != nullptr;
}

void EngineDiscovery::leave() noexcept
{
    free_etimelist();
}

bool EngineDiscovery::accepts(const netsnmp_pdu& /*response*/) const
{
    return false; // an agent that answers a request to no engine tells nothing about its own
}

ReportVerdict EngineDiscovery::onReport(netsnmp_pdu& report)
{
    const std::size_t size = report.securityEngineIDLen;
    if (size == 0 || size > SNMP_MAX_ENG_SIZE)
        throw Exception("the agent's engine ID has " + std::to_string(size) + " bytes; expected 1 to 32");
    engine_.assign(report.securityEngineID, report.securityEngineID + size);
    clock_ = EngineClock::load(engine_);
    return ReportVerdict::satisfied;
}

} // namespace Kep::Snmp
