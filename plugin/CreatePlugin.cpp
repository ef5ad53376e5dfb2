#include "plugin/CreatePlugin.h"

#include "Kep/Platform/Proxy/Tasks.h"
#include "plugin/PrinterDiscoveryService.h"

namespace PrinterDiscoveryPlugin {
namespace {

using TaskQueueProxy = Kep::Platform::Proxy::Tasks::Proxy;

// The factory is kept by the plug-in's own locator: it must not share the plug-in, which would then never go.
void registerTaskQueueFactory(Kep::Platform::Plugin& plugin)
{
    plugin.serviceLocator().registerFactory<TaskQueueProxy>([owner = &plugin] {
        return std::make_shared<TaskQueueProxy>(owner->serviceCaller(), owner->callbacks(), "TaskQueue");
    });
}

} // namespace

std::shared_ptr<Kep::Platform::Plugin> createPlugin()
{
    auto plugin = std::make_shared<Kep::Platform::Plugin>();
    plugin->setName("PrinterDiscovery");
    plugin->setDescription("Discovers printers using snmp");
    plugin->setConfigured();
    registerTaskQueueFactory(*plugin);
    plugin->addService(std::make_shared<PrinterDiscoveryService>());
    return plugin;
}

} // namespace PrinterDiscoveryPlugin
