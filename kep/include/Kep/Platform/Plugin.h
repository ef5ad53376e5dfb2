/// A loaded plug-in: its services, its locator, its share of the host.
#pragma once

#include "Kep/Export.h"
#include "Kep/Platform/IPlugin.h"
#include "Kep/Platform/Service.h"
#include "Kep/ServiceLocator.h"
#include "Kep/Variant.h"

#include <memory>
#include <string>

namespace Kep::Platform {

class CallbacksService; // the host's book-keeping of a plug-in's tasks; opaque
class IServiceCaller;   // how a plug-in reaches the host's services; opaque

/// Made with shared ownership. Set up by one thread; `call` may then come from any number at once. A new plug-in's
/// locator already makes `Proxy::DataStore::Proxy`.
class KEP_API Plugin : public IPlugin, public std::enable_shared_from_this<Plugin> {
public:
    Plugin();

    /// As `deinit`, if that was not called.
    ~Plugin() override;
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    void setName(const std::string& name);
    void setDescription(const std::string& description);

    /// Says that the set-up is complete; services are started by `init` only then.
    void setConfigured();

    /// Adds a service under its reference and shares it.
    void addService(const std::shared_ptr<Service>& service);

    /// Takes the configuration document over (docs/operations.md lists its members), starts the services and answers
    ///
    ///     {"name":text,"description":text,"services":[{"reference":text,"state":"started"|"failed","error":text|null,
    ///      "dependencies":[...],"operations":[...]}],"error":text|null}
    ///
    /// A service that cannot start is reported there with the reason. A document that cannot be used is reported in
    /// "error", and then no service is started. An empty text counts as an empty document. Throws only
    /// `std::bad_alloc`.
    Variant init(const std::string& config);

    /// Calls an operation of a service. Throws `Kep::NotFoundException` when there is no such service or operation,
    /// and what the operation throws.
    Variant call(const std::string& service, const std::string& operation, const std::string& params);

    /// Stops the services, then waits until all tasks that the plug-in submitted have ended and are destroyed.
    /// Not to be called from one of them. A second call does nothing. Throws what a stop hook throws, after the rest.
    void deinit();

    ServiceLocator& serviceLocator() override;

    /// The plug-in's share of the host's task queue, shared with the proxies that submit to it.
    std::shared_ptr<CallbacksService> callbacks() const;

    /// How the plug-in reaches the host's services; lives as long as the plug-in.
    IServiceCaller& serviceCaller() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace Kep::Platform
