/// The life of the plug-in object: as long as the library is loaded.
#pragma once

#include "Kep/Platform/Plugin.h"

#include <memory>

namespace PrinterDiscoveryPlugin {

/// The plug-in object of the process. Set once by `attach`, cleared by `detach`, and only read in between, so that it
/// needs no lock. Defined beside the code that calls those two when the system loads and unloads the library.
extern std::shared_ptr<Kep::Platform::Plugin> g_plugin;

/// Builds the plug-in object. What building it throws passes.
void attach();

/// Clears `g_plugin`, then lets go of the object, which ends with that unless somebody shares it.
void detach();

} // namespace PrinterDiscoveryPlugin
