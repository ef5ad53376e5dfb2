/// A plug-in's client of the host's task queue.
#pragma once

#include "Kep/Export.h"
#include "Kep/Platform/Plugin.h"
#include "Kep/Tasks/IManager.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Kep::Platform::Proxy::Tasks {

/// Any thread. May outlive its plug-in's `deinit`; submitting then throws.
class KEP_API Proxy : public Kep::Tasks::IManager {
public:
    /// Reaches the host service named `service` ("TaskQueue") through `caller`; tasks are accounted to the plug-in
    /// that `callbacks` belongs to. Throws `Kep::NotFoundException` when the host has no such service.
    Proxy(IServiceCaller& caller, std::shared_ptr<CallbacksService> callbacks, const std::string& service);
    ~Proxy() override;

    std::uint32_t submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string& group,
                         int priority) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace Kep::Platform::Proxy::Tasks
