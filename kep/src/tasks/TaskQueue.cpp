#include "tasks/TaskQueue.h"

#include "Kep/Exception.h"
#include "Kep/Host/Tasks.h"
#include "base/CurrentCall.h"
#include "base/Immortal.h"
#include "tasks/SleeperTable.h"

#include <algorithm>
#include <utility>

namespace Kep {
namespace {

using std::chrono::steady_clock;

// Between attempts to get a thread from a system that had none to give: doubled up to the longest.
constexpr std::chrono::milliseconds firstPause{10};
constexpr std::chrono::milliseconds longestPause{500};

// Calls a callback; the number of exceptions that it ended with.
template <class Callback> unsigned thrownBy(Callback&& callback) noexcept
{
    try {
        callback();
        return 0;
    } catch (...) {
        return 1;
    }
}

// Serves a task and lets go of it and of its account, at last of its code; the number of callbacks that threw.
unsigned serve(Backlog::Entry& entry) noexcept
{
    const auto code = entry.task->takeCode();
    const CurrentCall scope(entry.callId);
    Tasks::FinishContext outcome{.taskId = entry.id, .ran = !entry.withdrawn, .succeeded = false};
    unsigned thrown = 0;
    if (outcome.ran) {
        Tasks::RunContext context{.taskId = entry.id};
        thrown += thrownBy([&] { outcome.succeeded = entry.task->run(context); });
    }
    thrown += thrownBy([&] { entry.task->finish(outcome); });
    entry.task.reset();
    entry.owner->leave();
    entry.owner.reset();
    return thrown;
}

} // namespace

TaskQueue::TaskQueue(ITaskThreads& threads, Options options) : threads_(threads), options_(std::move(options))
{
    ensureStarter();
}

TaskQueue::~TaskQueue()
{
    MutexLock lock(mutex_);
    closing_ = true;
    starterWake_.notify_one();
    for (Worker& worker : idle_) {
        worker.wake.notify_one();
    }
    while (hasStarter_ || workers_ != 0) {
        lock.wait(ended_);
    }
}

TaskQueue& TaskQueue::process()
{
    struct Parts {
        Parts() { makeRoomForSleepers(); }
        SystemTaskThreads threads;
        TaskQueue queue{threads, {.limit = [] { return Host::taskLimit().tasks; }}};
    };
    static Immortal<Parts> parts;
    return (*parts).queue;
}

std::uint32_t TaskQueue::submit(const std::shared_ptr<Tasks::Task>& task,
                                const std::shared_ptr<Platform::CallbacksService>& owner)
{
    const std::size_t limit = std::max<std::size_t>(options_.limit(), 1);
    if (!owner->enter()) {
        throw GenericException("the task queue accepts no more tasks of the plug-in");
    }
    std::uint32_t id = 0;
    try {
        id = enqueue(task, owner, limit);
    } catch (...) {
        owner->leave();
        throw;
    }
    ensureStarter();
    return id;
}

std::uint32_t TaskQueue::enqueue(const std::shared_ptr<Tasks::Task>& task,
                                 const std::shared_ptr<Platform::CallbacksService>& owner, std::size_t limit)
{
    const MutexLock lock(mutex_);
    limit_ = limit;
    const std::uint32_t id = backlog_.add(task, owner, currentCall());
    engage();
    return id;
}

void TaskQueue::openCall(Host::CallId call) noexcept
{
    const MutexLock lock(mutex_);
    backlog_.openCall(call);
}

void TaskQueue::closeCall(Host::CallId call) noexcept
{
    const MutexLock lock(mutex_);
    backlog_.closeCall(call);
}

Host::CallWork TaskQueue::workOf(Host::CallId call)
{
    ensureStarter();
    const MutexLock lock(mutex_);
    return backlog_.workOf(call);
}

void TaskQueue::waitForWork(Host::CallId call)
{
    MutexLock lock(mutex_);
    ++workWaiters_;
    while (hasWork(call)) {
        lock.unlock();
        ensureStarter();
        lock.lock();
        if (!hasStarter_) {
            lock.waitUntil(workEnded_, steady_clock::now() + longestPause);
        } else if (hasWork(call)) {
            lock.wait(workEnded_);
        }
    }
    --workWaiters_;
}

bool TaskQueue::hasEnded(Host::CallId call)
{
    const MutexLock lock(mutex_);
    return !backlog_.knows(call);
}

void TaskQueue::withdraw(Host::CallId call)
{
    ensureStarter();
    const MutexLock lock(mutex_);
    backlog_.withdraw(call);
}

TaskQueue::Figures TaskQueue::figures() const
{
    const MutexLock lock(mutex_);
    return {.workers = workers_,
            .idle = idle_.size(),
            .queued = backlog_.queued(),
            .pending = backlog_.pending(),
            .calls = backlog_.calls(),
            .thrown = thrown_};
}

// Makes the thread that makes the others, unless it is there. Tried again whenever the queue is used, since nothing
// runs without it.
void TaskQueue::ensureStarter() noexcept
{
    if (hasStarter_.load() || hasStarter_.exchange(true)) {
        return;
    }
    if (!threads_.start([this] { makeWorkers(); })) {
        hasStarter_.store(false);
    }
}

void TaskQueue::makeWorkers()
{
    auto pause = firstPause;
    MutexLock lock(mutex_);
    while (!closing_) {
        if (!shortOfThreads() || !idle_.empty()) {
            starterWaits_ = true;
            lock.wait(starterWake_);
            starterWaits_ = false;
            continue;
        }
        ++workers_;
        ++active_;
        ++coming_;
        lock.unlock();
        const bool started = threads_.start([this] { work(); });
        lock.lock();
        if (started) {
            pause = firstPause;
            continue;
        }
        --workers_;
        --active_;
        --coming_;
        afterFailedStart(lock, pause);
        pause = std::min(pause * 2, longestPause);
    }
    hasStarter_ = false;
    ended_.notify_all();
}

// With no worker at all serves one task on this thread; otherwise leaves the work to the workers for `pause`.
void TaskQueue::afterFailedStart(MutexLock& lock, std::chrono::milliseconds pause)
{
    if (workers_ == 0 && mayServe()) {
        ++active_;
        serveNext(lock);
        --active_;
        return;
    }
    const auto deadline = steady_clock::now() + pause;
    while (!closing_ && lock.waitUntil(starterWake_, deadline)) {
    }
}

void TaskQueue::work()
{
    Worker self;
    MutexLock lock(mutex_);
    do {
        --coming_;
        while (mayServe()) {
            serveNext(lock);
        }
        sitIdle(self, lock);
    } while (!self.is_linked());
    idle_.erase(idle_.iterator_to(self));
    --workers_;
    if (closing_) {
        ended_.notify_all();
    }
}

// Waits for work, which `engage` announces by taking the worker out of the idle ones, and at most the idle time.
void TaskQueue::sitIdle(Worker& self, MutexLock& lock)
{
    --active_;
    idle_.push_front(self);
    const auto deadline = steady_clock::now() + options_.idleTime;
    while (self.is_linked() && !closing_ && lock.waitUntil(self.wake, deadline)) {
    }
}

// Opens a gap in `lock`, which the analysis cannot follow through a reference.
void TaskQueue::serveNext(MutexLock& lock) KEP_NO_THREAD_SAFETY_ANALYSIS
{
    Backlog::Entry& entry = backlog_.take();
    engage();
    lock.unlock();
    const unsigned thrown = serve(entry);
    lock.lock();
    thrown_ += thrown;
    const Host::CallId call = entry.callId;
    backlog_.remove(entry);
    if (workWaiters_ > 0 && !hasWork(call)) {
        workEnded_.notify_all();
    }
}

bool TaskQueue::hasWork(Host::CallId call) const
{
    const Host::CallWork work = backlog_.workOf(call);
    return work.queued + work.running > 0;
}

bool TaskQueue::mayServe() const
{
    return backlog_.queued() > 0 && active_ <= limit_;
}

bool TaskQueue::shortOfThreads() const
{
    return backlog_.queued() > coming_ && active_ < limit_;
}

// Gets one more thread to work if there is work for it: an idle worker, or else a new one.
void TaskQueue::engage() noexcept
{
    if (!shortOfThreads()) {
        return;
    }
    if (idle_.empty()) {
        if (starterWaits_) {
            starterWake_.notify_one();
        }
        return;
    }
    Worker& worker = idle_.front();
    idle_.pop_front();
    ++active_;
    ++coming_;
    worker.wake.notify_one();
}

} // namespace Kep
