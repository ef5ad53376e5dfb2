#include "snmp/Engine.h"

#include "base/Immortal.h"
#include "snmp/Library.h"

namespace Kep::Snmp {

V3Engine::~V3Engine() = default;

std::shared_ptr<V3Engine> V3Engine::get()
{
    static Immortal<std::shared_ptr<Engine>> engine(std::make_shared<Engine>());
    return *engine;
}

Engine::Engine()
{
    initialiseLibrary();
}

} // namespace Kep::Snmp
