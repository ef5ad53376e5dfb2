#include "plugin/PrinterDiscoveryService.h"

#include "Kep/Exception.h"
#include "Kep/Json.h"
#include "Kep/Platform/Proxy/Tasks.h"
#include "documents/DiscoveryConfig.h"
#include "documents/StatusDocument.h"
#include "plugin/IdentificationLoader.h"
#include "registry/RunControl.h"

#include <utility>

namespace PrinterDiscoveryPlugin {

/// Run control for the length of one operation.
class PrinterDiscoveryService::RegistryVisit {
public:
    /// `firstCall` is the operation of the registry that a stopped service refuses.
    RegistryVisit(PrinterDiscoveryService& service, const char* firstCall)
        : cookies_(service.cookies_), visit_(service.gate_)
    {
        if (visit_.registry() == nullptr)
            throw Kep::InvalidOperationException(firstCall);
    }

    RunControl runControl() const { return {*visit_.registry(), cookies_}; }

private:
    CookieTable& cookies_;
    OperationGate::Visit visit_;
};

PrinterDiscoveryService::PrinterDiscoveryService() : cookies_(cookieTable()), settings_(identificationSettings())
{
    setReference("PrinterDiscovery");
    dependencies_.emplace_back("PrintService");
    addOperation("startDiscovery", [this](const std::string& params) { return startDiscovery(params); });
    addOperation("startDiscoveryBlocking",
                 [this](const std::string& params) { return startDiscoveryBlocking(params); });
    addOperation("stopDiscovery", [this](const std::string& params) { return stopDiscovery(params); });
    addOperation("getStatus", [this](const std::string& params) { return getStatus(params); });
}

PrinterDiscoveryService::~PrinterDiscoveryService() = default;

void PrinterDiscoveryService::onStart()
{
    taskQueue_ = plugin().serviceLocator().get<Kep::Platform::Proxy::Tasks::Proxy>();
    auto registry = std::make_unique<PdExecutorRegistry>(taskQueue_);
    gate_.close();
    registry_ = std::move(registry);
    onConfigure(Kep::Variant());
    gate_.open(*registry_);
}

void PrinterDiscoveryService::onStop()
{
    registry_->shutdown();
    gate_.close();
    registry_.reset();
    taskQueue_.reset();
}

void PrinterDiscoveryService::onConfigure(const Kep::Variant&)
{
    loadIdentificationSettings(reference(), plugin().serviceLocator(), settings_);
}

Kep::Variant PrinterDiscoveryService::startDiscovery(const std::string& params)
{
    const Kep::Variant document = Kep::Json::parse(params);
    const DiscoveryConfig config = parseDiscoveryConfig(document["config"]);
    const auto cookie = static_cast<std::string>(document["cookie"]);
    RegistryVisit(*this, "createPdExecutor").runControl().startDiscovery(cookie, config);
    return resultSuccess();
}

Kep::Variant PrinterDiscoveryService::startDiscoveryBlocking(const std::string& params)
{
    const Kep::Variant document = Kep::Json::parse(params);
    const DiscoveryConfig config = parseDiscoveryConfig(document["config"]);
    const auto cookie = static_cast<std::string>(document["cookie"]);
    RegistryVisit(*this, "checkTimeouts").runControl().startDiscoveryBlocking(cookie, config);
    return resultSuccess();
}

Kep::Variant PrinterDiscoveryService::stopDiscovery(const std::string& params)
{
    const Kep::Variant document = Kep::Json::parse(params);
    const auto cookie = static_cast<std::string>(document["cookie"]);
    RegistryVisit(*this, "checkTimeouts").runControl().stopDiscovery(cookie);
    return resultSuccess();
}

Kep::Variant PrinterDiscoveryService::getStatus(const std::string& params)
{
    const Kep::Variant document = Kep::Json::parse(params);
    const auto firstIdx = static_cast<int>(document["firstIdx"]);
    const auto cookie = static_cast<std::string>(document["cookie"]);
    const DiscoveryStatus status = RegistryVisit(*this, "getPdExecutor").runControl().getStatus(cookie, firstIdx);
    return resultSuccessJson(statusToJson(status));
}

} // namespace PrinterDiscoveryPlugin
