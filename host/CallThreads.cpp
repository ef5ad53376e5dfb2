#include "host/CallThreads.h"

#include <utility>

namespace Host {

CallThreads::CallThreads(std::size_t limit) : limit_(limit) {}

CallThreads::~CallThreads()
{
    Kep::MutexLock lock(mutex_);
    closing_ = true;
    lock.unlock();
    wake_.notify_all();
    threads_.clear(); // joins
    lock.lock();
}

void CallThreads::run(std::function<void()> call)
{
    Kep::MutexLock lock(mutex_);
    while (underWay_ == limit_)
        lock.wait(ended_);
    if (underWay_ == threads_.size()) // all busy
        threads_.emplace_back([this] { work(); });
    waiting_.push_back(std::move(call));
    ++underWay_;
    wake_.notify_one();
}

bool CallThreads::waitIdle(std::chrono::milliseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    Kep::MutexLock lock(mutex_);
    while (underWay_ > 0)
        if (!lock.waitUntil(ended_, deadline))
            return underWay_ == 0;
    return true;
}

void CallThreads::work()
{
    Kep::MutexLock lock(mutex_);
    while (true) {
        while (waiting_.empty() && !closing_)
            lock.wait(wake_);
        if (waiting_.empty())
            return;
        const std::function<void()> call = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        call();
        lock.lock();
        --underWay_;
        ended_.notify_all();
    }
}

} // namespace Host
