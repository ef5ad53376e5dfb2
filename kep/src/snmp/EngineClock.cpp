#include "snmp/EngineClock.h"

namespace Kep::Snmp {

namespace {

enginetime* find(const EngineId& engine) KEP_REQUIRES(libraryMutex)
{
    return search_enginetime_list(engine.data(), static_cast<u_int>(engine.size()));
}

} // namespace

EngineClock EngineClock::load(const EngineId& engine)
{
    const enginetime* const known = find(engine);
    if (known == nullptr)
        return {};
    return {known->engineBoot, known->engineTime, known->lastReceivedEngineTime, known->authenticatedFlag != 0};
}

void EngineClock::restore(const EngineId& engine) const
{
    set_enginetime(engine.data(), static_cast<u_int>(engine.size()), boots, time, authenticated ? 1 : 0);
    if (enginetime* const known = find(engine))
        known->lastReceivedEngineTime = received;
}

} // namespace Kep::Snmp
