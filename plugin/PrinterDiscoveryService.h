/// The service "PrinterDiscovery".
#pragma once

#include "Kep/Platform/StartableService.h"
#include "Kep/Tasks/IManager.h"
#include "Kep/Variant.h"
#include "engine/IdentificationSettings.h"
#include "plugin/OperationGate.h"
#include "registry/CookieTable.h"
#include "registry/PdExecutorRegistry.h"

#include <memory>
#include <string>

namespace PrinterDiscoveryPlugin {

/// Operations, each with a JSON object for its parameters:
///
/// - "startDiscovery" ("config", "cookie") starts a run and answers at once;
/// - "startDiscoveryBlocking" ("config", "cookie") starts a run and answers when it has finished or was stopped;
/// - "stopDiscovery" ("cookie") answers when the run has ended, and at once for an unknown cookie;
/// - "getStatus" ("cookie", "firstIdx") answers the status document with the printers from `firstIdx` on.
///
/// They come from any thread, several at once, and take no lock of their own. They throw `Kep::GenericException` for
/// parameters that are malformed, missing or of the wrong kind, and while the service is stopped
/// `Kep::InvalidOperationException` with the operation of the registry that they would have called first.
class PrinterDiscoveryService final : public Kep::Platform::StartableService {
public:
    PrinterDiscoveryService();
    ~PrinterDiscoveryService() override;

    /// Gets a proxy of the task queue, builds a registry on it, and loads the identification settings. What one of
    /// these throws passes, and the operations go on finding no registry. A registry left from before is destroyed.
    void onStart() override;

    /// Tells all runs to stop, waits until their work and the operations still inside have ended, and lets go of
    /// registry and proxy. Cookies stay. Requires that the last `onStart` succeeded.
    void onStop() override;

    /// Loads the identification settings from the data store; `settings` does not matter.
    void onConfigure(const Kep::Variant& settings) override;

private:
    class RegistryVisit;

    Kep::Variant startDiscovery(const std::string& params);
    Kep::Variant startDiscoveryBlocking(const std::string& params);
    Kep::Variant stopDiscovery(const std::string& params);
    Kep::Variant getStatus(const std::string& params);

    std::shared_ptr<Kep::Tasks::IManager> taskQueue_;
    std::unique_ptr<PdExecutorRegistry> registry_;
    OperationGate gate_;

    // Held from construction on, so that both were made before the service and end after it.
    CookieTable& cookies_;
    IdentificationSettings& settings_;
};

} // namespace PrinterDiscoveryPlugin
