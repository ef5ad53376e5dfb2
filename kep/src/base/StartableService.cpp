#include "Kep/Platform/StartableService.h"

#include "base/TextList.h"

namespace Kep::Platform {

IStartable2::~IStartable2() = default;

StartableService::StartableService() = default;
StartableService::~StartableService() = default;

Variant StartableService::call(const std::string& operation, const std::string& params)
{
    if (operation == "startService") {
        startService();
        return resultSuccess();
    }
    if (operation == "stopService") {
        stopService();
        return resultSuccess();
    }
    if (operation == "getServiceConfig") {
        return getServiceConfig();
    }
    return Service::call(operation, params);
}

void StartableService::startService()
{
    MutexLock lock(mutex_);
    if (!started_) {
        onStart();
        started_ = true;
    }
}

void StartableService::stopService()
{
    MutexLock lock(mutex_);
    if (started_) {
        started_ = false;
        onStop();
    }
}

Variant StartableService::getServiceConfig()
{
    MutexLock lock(mutex_);
    return Variant(Variant::Object{{"reference", Variant(reference())},
                                   {"state", Variant(started_ ? "started" : "stopped")},
                                   {"dependencies", textList(dependencies())},
                                   {"operations", textList(operationNames())}});
}

} // namespace Kep::Platform
