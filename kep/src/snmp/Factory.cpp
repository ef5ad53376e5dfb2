#include "Kep/Snmp/Factory.h"

#include "snmp/AgentSession.h"

namespace Kep::Snmp {

Factory::Factory(std::shared_ptr<V3Engine> engine) : engine_(std::move(engine)) {}

Factory::~Factory() = default;

std::shared_ptr<Session> Factory::create(const std::shared_ptr<Profile>& profile)
{
    return std::make_shared<AgentSession>(std::static_pointer_cast<Engine>(engine_), profile);
}

} // namespace Kep::Snmp
