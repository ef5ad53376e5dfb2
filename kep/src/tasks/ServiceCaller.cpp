#include "tasks/ServiceCaller.h"

#include "Kep/Exception.h"
#include "tasks/TaskQueue.h"

namespace Kep::Platform {

IServiceCaller::~IServiceCaller() = default;

TaskQueue& LocalServiceCaller::taskQueue(const std::string& service)
{
    if (service != "TaskQueue") {
        throw NotFoundException("the host has no service \"" + service + "\"");
    }
    return TaskQueue::process();
}

} // namespace Kep::Platform
