#include "Kep/Platform/Proxy/Tasks.h"

#include "tasks/CallbacksService.h"
#include "tasks/ServiceCaller.h"
#include "tasks/TaskQueue.h"

#include <utility>

namespace Kep::Platform::Proxy::Tasks {

struct Proxy::Impl {
    TaskQueue& queue;
    std::shared_ptr<CallbacksService> callbacks;
};

Proxy::Proxy(IServiceCaller& caller, std::shared_ptr<CallbacksService> callbacks, const std::string& service)
    : impl_(std::make_unique<Impl>(Impl{caller.taskQueue(service), std::move(callbacks)}))
{}

Proxy::~Proxy() = default;

// The queue in this process serves all groups alike and knows one priority.
std::uint32_t Proxy::submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string& /*group*/,
                            int /*priority*/)
{
    return impl_->queue.submit(task, impl_->callbacks);
}

} // namespace Kep::Platform::Proxy::Tasks
