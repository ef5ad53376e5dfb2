#include "Kep/Platform/IPlugin.h"

namespace Kep::Platform {

IPlugin::~IPlugin() = default;

} // namespace Kep::Platform
