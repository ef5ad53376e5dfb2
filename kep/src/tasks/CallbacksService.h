/// A plug-in's share of the task queue: which of its tasks are still alive.
#pragma once

#include "Kep/Export.h"
#include "Kep/Mutex.h"

#include <condition_variable>
#include <cstddef>

namespace Kep::Platform {

/// Any thread. The queue enters a task when it takes it and leaves when it has let go of it.
class KEP_API CallbacksService {
public:
    /// Counts one more task; false, and nothing counted, once closed.
    bool enter();

    /// Counts one task less.
    void leave();

    /// Refuses tasks from now on, and waits until those that there are have been let go of. Not to be called from one.
    void close();

    /// Accepts tasks again.
    void reopen();

private:
    Mutex mutex_;
    std::condition_variable idle_;
    std::size_t tasks_ KEP_GUARDED_BY(mutex_) = 0;
    bool closed_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace Kep::Platform
