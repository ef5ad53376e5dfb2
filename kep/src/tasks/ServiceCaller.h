/// How a plug-in reaches the services of the host.
#pragma once

#include "Kep/Export.h"

#include <string>

namespace Kep {
class TaskQueue;

namespace Platform {

class KEP_API IServiceCaller {
public:
    virtual ~IServiceCaller();

    /// The host's task queue, if `service` is its name ("TaskQueue"). Throws `Kep::NotFoundException` otherwise.
    virtual TaskQueue& taskQueue(const std::string& service) = 0;
};

/// The caller of plug-ins that live in this process, where the queue is the process-wide one.
class LocalServiceCaller final : public IServiceCaller {
public:
    TaskQueue& taskQueue(const std::string& service) override;
};

} // namespace Platform
} // namespace Kep
