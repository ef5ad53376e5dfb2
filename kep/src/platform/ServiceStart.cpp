#include "platform/ServiceStart.h"

#include "Kep/Platform/StartableService.h"
#include "base/TextList.h"

#include <exception>

namespace Kep {
namespace {

// The reason why the service is not started, empty when it is.
std::string start(Platform::Service& service)
try {
    // A service without start hook is started by being there.
    if (auto* startable = dynamic_cast<Platform::IStartable2*>(&service)) {
        startable->startService();
    }
    return {};
} catch (const std::exception& error) {
    const std::string reason = error.what();
    return reason.empty() ? "no reason given" : reason;
} catch (...) {
    return "no reason given";
}

Variant describe(const Platform::Service& service, const std::string& error)
{
    return Variant(Variant::Object{{"reference", Variant(service.reference())},
                                   {"state", Variant(error.empty() ? "started" : "failed")},
                                   {"error", error.empty() ? Variant() : Variant(error)},
                                   {"dependencies", textList(service.dependencies())},
                                   {"operations", textList(service.operationNames())}});
}

} // namespace

Variant startServices(const Services& services, const std::string& obstacle)
{
    Variant::Array descriptions;
    for (const auto& service : services) {
        descriptions.push_back(describe(*service, obstacle.empty() ? start(*service) : obstacle));
    }
    return Variant(std::move(descriptions));
}

void stopServices(const Services& services)
{
    std::exception_ptr firstFailure;
    for (auto service = services.rbegin(); service != services.rend(); ++service) {
        try {
            if (auto* startable = dynamic_cast<Platform::IStartable2*>(service->get())) {
                startable->stopService();
            }
        } catch (...) {
            firstFailure = firstFailure ? firstFailure : std::current_exception();
        }
    }
    if (firstFailure) {
        std::rethrow_exception(firstFailure);
    }
}

} // namespace Kep
