#include "Kep/Platform/Plugin.h"

#include "Kep/Exception.h"
#include "Kep/Mutex.h"
#include "Kep/Platform/Proxy/DataStore.h"
#include "datastore/DataStoreProxy.h"
#include "platform/Configuration.h"
#include "platform/ServiceStart.h"
#include "settings/HostSettings.h"
#include "tasks/CallbacksService.h"
#include "tasks/ServiceCaller.h"

#include <algorithm>
#include <exception>

namespace Kep::Platform {

struct Plugin::Impl {
    std::string name;
    std::string description;
    bool configured = false;

    std::shared_ptr<CallbacksService> callbacks = std::make_shared<CallbacksService>();
    LocalServiceCaller caller;
    ServiceLocator locator;

    Mutex mutex;
    std::string dataStorePath KEP_GUARDED_BY(mutex);

    Services services; // destroyed first: they may use what stands above

    std::shared_ptr<Proxy::DataStore::Proxy> makeDataStore()
    {
        MutexLock lock(mutex);
        return makeDataStoreProxy(dataStorePath);
    }

    void configure(const std::string& document)
    {
        const Configuration configuration = readConfiguration(document);
        applyHostSettings(effectiveHostSettings(configuration));
        MutexLock lock(mutex);
        dataStorePath = configuration.dataStorePath;
    }

    // Why the plug-in cannot be used, empty when it can.
    std::string takeConfiguration(const std::string& document)
    {
        try {
            configure(document);
        } catch (const std::exception& error) {
            return std::string("configuration: ") + error.what();
        }
        return configured ? "" : "the plug-in is not configured";
    }
};

Plugin::Plugin() : impl_(std::make_unique<Impl>())
{
    Impl& impl = *impl_; // owns the locator, so the factory never outlives it
    impl.locator.registerFactory<Proxy::DataStore::Proxy>([&impl] { return impl.makeDataStore(); });
}

Plugin::~Plugin()
{
    try {
        deinit();
    } catch (...) { // a stop hook failed; there is nobody left to tell
    }
}

void Plugin::setName(const std::string& name)
{
    impl_->name = name;
}

void Plugin::setDescription(const std::string& description)
{
    impl_->description = description;
}

void Plugin::setConfigured()
{
    impl_->configured = true;
}

void Plugin::addService(const std::shared_ptr<Service>& service)
{
    impl_->services.push_back(service);
    service->setPlugin(*this);
}

Variant Plugin::init(const std::string& config)
{
    impl_->callbacks->reopen();
    const std::string obstacle = impl_->takeConfiguration(config);
    return Variant(Variant::Object{{"name", Variant(impl_->name)},
                                   {"description", Variant(impl_->description)},
                                   {"services", startServices(impl_->services, obstacle)},
                                   {"error", obstacle.empty() ? Variant() : Variant(obstacle)}});
}

Variant Plugin::call(const std::string& service, const std::string& operation, const std::string& params)
{
    const auto found = std::find_if(impl_->services.begin(), impl_->services.end(),
                                    [&service](const auto& each) { return each->reference() == service; });
    if (found == impl_->services.end()) {
        throw Kep::NotFoundException("no service \"" + service + "\"");
    }
    return (*found)->call(operation, params);
}

void Plugin::deinit()
{
    std::exception_ptr failure;
    try {
        stopServices(impl_->services);
    } catch (...) {
        failure = std::current_exception();
    }
    impl_->callbacks->close();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

ServiceLocator& Plugin::serviceLocator()
{
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
