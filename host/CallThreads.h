/// Threads on which calls into the plug-in run side by side.
#pragma once

#include "Kep/Host/Mutex.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <thread>
#include <vector>

namespace Host {

/// Grows on demand up to a limit and keeps its threads until it is destroyed. The public functions are for one thread.
class CallThreads {
public:
    explicit CallThreads(std::size_t limit);

    /// Waits until all calls have ended.
    ~CallThreads();
    CallThreads(const CallThreads&) = delete;
    CallThreads& operator=(const CallThreads&) = delete;

    /// Runs `call`, which throws nothing, on a thread of its own. Waits first while as many calls as the limit allows
    /// are under way. Throws `std::system_error` when there is no thread to be had.
    void run(std::function<void()> call);

    /// Waits until no call is under way, at most for `time`; whether that is so.
    bool waitIdle(std::chrono::milliseconds time);

private:
    void work();

    const std::size_t limit_;

    Kep::Mutex mutex_;
    std::condition_variable wake_;  ///< a call has come, or the end
    std::condition_variable ended_; ///< a call has ended
    std::deque<std::function<void()>> waiting_ KEP_GUARDED_BY(mutex_);
    std::size_t underWay_ KEP_GUARDED_BY(mutex_) = 0; ///< the waiting ones included
    bool closing_ KEP_GUARDED_BY(mutex_) = false;

    std::vector<std::jthread> threads_;
};

} // namespace Host
