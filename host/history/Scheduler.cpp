#include "host/history/Scheduler.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Host {

Scheduler::Scheduler(Schedules& schedules, Start start, Clock clock)
    : schedules_(schedules), start_(std::move(start)), clock_(std::move(clock)), thread_([this] { run(); })
{}

Scheduler::~Scheduler()
{
    {
        const Kep::MutexLock lock(mutex_);
        closing_ = true;
        changed_.notify_one();
    }
    thread_.join();
}

void Scheduler::wake()
{
    const Kep::MutexLock lock(mutex_);
    woken_ = true;
    changed_.notify_one();
}

void Scheduler::run()
{
    while (waitFor(startDue() ? untilNext() : LongestWait)) {
    }
}

/// False when the file cannot be used at the moment: what is due stays due.
bool Scheduler::startDue()
{
    try {
        for (const Schedule& schedule : schedules_.takeDue(clock_()))
            start(schedule);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void Scheduler::start(const Schedule& schedule)
{
    std::string run;
    try {
        run = start_(schedule);
    } catch (const std::exception&) {
        return;
    }
    if (!run.empty())
        schedules_.noteRun(schedule.id, run);
}

Scheduler::Wait Scheduler::untilNext() const
{
    const auto next = schedules_.nextDue();
    return next ? std::clamp(*next - clock_(), Wait::zero(), LongestWait) : LongestWait;
}

/// False when the end has come.
bool Scheduler::waitFor(Wait wait)
{
    const auto deadline = std::chrono::steady_clock::now() + wait;
    Kep::MutexLock lock(mutex_);
    while (!closing_ && !woken_ && lock.waitUntil(changed_, deadline)) {
    }
    woken_ = false;
    return !closing_;
}

} // namespace Host
