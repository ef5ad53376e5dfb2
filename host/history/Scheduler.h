/// Starts the runs of schedules when they are due.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/history/Schedules.h"

#include <condition_variable>
#include <functional>
#include <string>
#include <thread>

namespace Host {

/// A thread that waits for the schedules. Any thread may call `wake`.
class Scheduler {
public:
    using Clock = std::function<Schedule::Time()>;

    /// Starts the run of a schedule and gives its id; empty when it cannot be started now, and then it is left out this
    /// time. Called on the scheduler's thread, one schedule at a time, without a lock held. What it throws counts as
    /// not started.
    using Start = std::function<std::string(const Schedule&)>;

    /// Keeps the reference. Looks at the clock, the system's in all but tests, at least every 30 s, since it may be set
    /// and the machine may sleep.
    Scheduler(Schedules& schedules, Start start, Clock clock = std::chrono::system_clock::now);

    /// Waits for a start that is under way.
    ~Scheduler();
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    /// Has the thread look at clock and schedules at once: to be called when a schedule has been added.
    void wake();

private:
    using Wait = std::chrono::system_clock::duration;
    static constexpr Wait LongestWait = std::chrono::seconds(30);

    void run();
    bool startDue();
    void start(const Schedule& schedule);
    Wait untilNext() const;
    bool waitFor(Wait wait);

    Schedules& schedules_;
    const Start start_;
    const Clock clock_;

    Kep::Mutex mutex_;
    std::condition_variable changed_;
    bool woken_ KEP_GUARDED_BY(mutex_) = false;
    bool closing_ KEP_GUARDED_BY(mutex_) = false;

    std::thread thread_; ///< the last member: it uses the others
};

} // namespace Host
