/// A service that can be started and stopped while its plug-in stays loaded.
#pragma once

#include "Kep/Export.h"
#include "Kep/Mutex.h"
#include "Kep/Platform/Service.h"

#include <string>

namespace Kep::Platform {

/// What the framework asks of a startable service. Any thread.
class KEP_API IStartable2 {
public:
    virtual ~IStartable2();

    /// Starts the service unless it is started. What the start hook throws passes, and the service stays stopped.
    virtual void startService() = 0;

    /// Stops the service unless it is stopped. Returns when it has stopped. What the stop hook throws passes; the
    /// service counts as stopped then too.
    virtual void stopService() = 0;

    /// {"reference":text,"state":"started"|"stopped","dependencies":[text,...],"operations":[text,...]}
    virtual Variant getServiceConfig() = 0;
};

/// Starts and stops are serialised by a mutex that is held while a hook runs, and by nothing else: operations go on
/// meanwhile.
class KEP_API StartableService : public Service, public IStartable2 {
public:
    StartableService();
    ~StartableService() override;

    /// Besides the service's own operations answers "startService", "stopService" (both with `resultSuccess`) and
    /// "getServiceConfig"; their parameters are ignored.
    Variant call(const std::string& operation, const std::string& params) override;

    /// The hooks. `onStart` and `onStop` alternate, start first.
    virtual void onStart() = 0;
    virtual void onStop() = 0;

    /// Takes settings over; called by a service's own start hook.
    virtual void onConfigure(const Variant& settings) = 0;

    void startService() override;
    void stopService() override;
    Variant getServiceConfig() override;

private:
    Mutex mutex_;
    bool started_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace Kep::Platform
