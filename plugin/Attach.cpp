#include "plugin/Attach.h"

#include "Kep/Assert.h"
#include "plugin/CreatePlugin.h"

namespace PrinterDiscoveryPlugin {

void attach()
{
    g_plugin = createPlugin();
    if (!g_plugin)
        Kep::assertionFailed("g_plugin", "Kep\\Platform\\DllApi", 42);
}

void detach()
{
    std::shared_ptr<Kep::Platform::Plugin> released;
    released.swap(g_plugin);
}

} // namespace PrinterDiscoveryPlugin
