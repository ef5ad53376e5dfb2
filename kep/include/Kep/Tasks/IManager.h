/// The task queue as a plug-in sees it.
#pragma once

#include "Kep/Export.h"
#include "Kep/Tasks/Task.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Kep::Tasks {

class KEP_API IManager {
public:
    virtual ~IManager();

    /// Queues `task` under the name of a group and returns its id, which is never 0 and not in use by a pending task.
    /// A thread of the queue later calls the run callback and then, even if that threw, the finish callback; both are
    /// called without any lock of the queue, never on the submitting thread, and the queue lets go of the task
    /// afterwards. First in, first out. A task submitted by a task belongs to the same call of the host as that one,
    /// and so is withdrawn with it: a withdrawn task goes straight to its finish callback.
    ///
    /// `priority` is 0. Never waits for capacity. Any thread, callbacks included; takes the queue's lock briefly.
    /// Throws `std::bad_alloc`, or `GenericException` once the queue of the plug-in has been closed; nothing is
    /// queued then.
    virtual std::uint32_t submit(const std::shared_ptr<Task>& task, const std::string& group, int priority) = 0;
};

} // namespace Kep::Tasks
