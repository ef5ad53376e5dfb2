/// Builds the plug-in object.
#pragma once

#include "Kep/Platform/Plugin.h"

#include <memory>

namespace PrinterDiscoveryPlugin {

/// The plug-in, named and described, set up, with a factory for proxies of the host's task queue (a new one each time)
/// and with its one service. The caller shares it. Any thread; throws `std::bad_alloc`, and `std::system_error` for a
/// lock that fails.
std::shared_ptr<Kep::Platform::Plugin> createPlugin();

} // namespace PrinterDiscoveryPlugin
