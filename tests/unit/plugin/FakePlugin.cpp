#include "FakePlugin.h"

FakePluginScript& fakePlugin()
{
    static FakePluginScript script;
    return script;
}

namespace Kep::Platform {

struct Plugin::Impl {
    ServiceLocator locator;
    std::shared_ptr<CallbacksService> callbacks = std::make_shared<CallbacksService>();
    IServiceCaller caller;
};

Plugin::Plugin() : impl_(std::make_unique<Impl>())
{
    ++fakePlugin().alive;
}

Plugin::~Plugin()
{
    --fakePlugin().alive;
    if (fakePlugin().destroyed)
        fakePlugin().destroyed();
}

void Plugin::setName(const std::string& name)
{
    fakePlugin().events.push_back("setName " + name);
}

void Plugin::setDescription(const std::string& description)
{
    fakePlugin().events.push_back("setDescription " + description);
}

void Plugin::setConfigured()
{
    fakePlugin().events.emplace_back("setConfigured");
}

void Plugin::addService(const std::shared_ptr<Service>& service)
{
    fakePlugin().events.push_back("addService " + service->reference());
    fakePlugin().services.push_back(service);
    service->setPlugin(*this);
}

Variant Plugin::init(const std::string& config)
{
    return fakePlugin().init(config);
}

Variant Plugin::call(const std::string& service, const std::string& operation, const std::string& params)
{
    return fakePlugin().call(service, operation, params);
}

void Plugin::deinit()
{
    fakePlugin().deinit();
}

ServiceLocator& Plugin::serviceLocator()
{
    fakePlugin().events.emplace_back("serviceLocator");
    return impl_->locator;
}

std::shared_ptr<CallbacksService> Plugin::callbacks() const
{
    return impl_->callbacks;
}

IServiceCaller& Plugin::serviceCaller() const
{
    return impl_->caller;
}

} // namespace Kep::Platform
