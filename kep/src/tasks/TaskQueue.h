/// The host's task queue: what plug-ins submit runs here, on threads of its own.
#pragma once

#include "Kep/Host/Call.h"
#include "Kep/Mutex.h"
#include "Kep/Tasks/Task.h"
#include "tasks/Backlog.h"
#include "tasks/CallbacksService.h"
#include "tasks/TaskThreads.h"

#include <boost/intrusive/list.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace Kep {

/// First in, first out. Workers, the threads that run tasks, are made on demand up to a limit, kept as long as there
/// is work, and end when they have been idle for a while. One more thread makes them, so that no submission waits for
/// a thread to start; when the system has no thread to give it tries again later, and if there is no worker at all it
/// serves the tasks itself meanwhile, one at a time.
///
/// Any thread may call anything. One mutex, held for book-keeping only: never while a thread is started, a callback
/// runs or a task is destroyed.
class TaskQueue {
public:
    struct Options {
        std::function<std::size_t()> limit;       ///< most tasks that run at once, asked at each submission
        std::chrono::milliseconds idleTime{5000}; ///< after which a worker without work ends
    };

    struct Figures {
        std::size_t workers = 0; ///< threads that run tasks, idle ones included
        std::size_t idle = 0;    ///< of these, those without work
        std::size_t queued = 0;
        std::size_t pending = 0;  ///< queued and running
        std::size_t calls = 0;    ///< calls that something is known of
        std::uint64_t thrown = 0; ///< callbacks that ended with an exception, since the beginning
    };

    /// `threads` outlives the queue.
    TaskQueue(ITaskThreads& threads, Options options);

    /// Ends the threads. Requires that no task is pending.
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// The queue of this process, limited by the host settings and what the machine can give. Never destroyed: its
    /// threads outlive all static objects. The first call raises the process's limit of open descriptors.
    static TaskQueue& process();

    /// Queues `task` on the account of `owner`, under the current call of this thread, and returns its id. See
    /// `Tasks::IManager::submit`. Throws as that does.
    std::uint32_t submit(const std::shared_ptr<Tasks::Task>& task,
                         const std::shared_ptr<Platform::CallbacksService>& owner);

    /// The scope of a call: while it is open, a withdrawal holds even when no task of the call is left.
    void openCall(Host::CallId call) noexcept;
    void closeCall(Host::CallId call) noexcept;

    /// See `Kep/Host/Call.h`. A call that has neither an open scope nor tasks is not known and has no work;
    /// withdrawing it does nothing.
    Host::CallWork workOf(Host::CallId call);
    void waitForWork(Host::CallId call);
    bool hasEnded(Host::CallId call);
    void withdraw(Host::CallId call);

    Figures figures() const;

private:
    /// In `idle_` exactly as long as it is idle.
    struct Worker : boost::intrusive::list_base_hook<> {
        std::condition_variable wake;
    };

    std::uint32_t enqueue(const std::shared_ptr<Tasks::Task>& task,
                          const std::shared_ptr<Platform::CallbacksService>& owner, std::size_t limit);
    void ensureStarter() noexcept;
    void makeWorkers();
    void afterFailedStart(MutexLock& lock, std::chrono::milliseconds pause) KEP_REQUIRES(mutex_);
    void work();
    void sitIdle(Worker& self, MutexLock& lock) KEP_REQUIRES(mutex_);
    void serveNext(MutexLock& lock) KEP_REQUIRES(mutex_);
    bool hasWork(Host::CallId call) const KEP_REQUIRES(mutex_);
    bool mayServe() const KEP_REQUIRES(mutex_);
    bool shortOfThreads() const KEP_REQUIRES(mutex_);
    void engage() noexcept KEP_REQUIRES(mutex_);

    ITaskThreads& threads_;
    const Options options_;
    std::atomic<bool> hasStarter_{false};

    mutable Mutex mutex_;
    std::condition_variable starterWake_;
    std::condition_variable ended_;
    std::condition_variable workEnded_; // that of some call, while somebody waits for one
    Backlog backlog_ KEP_GUARDED_BY(mutex_);
    boost::intrusive::list<Worker> idle_ KEP_GUARDED_BY(mutex_); // the last to become idle is the first to work again
    std::size_t limit_ KEP_GUARDED_BY(mutex_) = 1;
    std::size_t workers_ KEP_GUARDED_BY(mutex_) = 0;
    std::size_t active_ KEP_GUARDED_BY(mutex_) = 0; // threads that serve or are on their way to
    std::size_t coming_ KEP_GUARDED_BY(mutex_) = 0; // of these, those that have yet to look for a task
    std::size_t workWaiters_ KEP_GUARDED_BY(mutex_) = 0;
    std::uint64_t thrown_ KEP_GUARDED_BY(mutex_) = 0;
    bool starterWaits_ KEP_GUARDED_BY(mutex_) = false;
    bool closing_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace Kep
