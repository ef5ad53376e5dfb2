#include "host/console/RunPace.h"

#include <thread>

namespace Host {

void RunPace::interrupt()
{
    Kep::MutexLock lock(mutex_);
    interrupted_ = true;
    wake_.notify_all();
}

std::chrono::steady_clock::time_point RunPace::now()
{
    return std::chrono::steady_clock::now();
}

bool RunPace::interrupted()
{
    Kep::MutexLock lock(mutex_);
    return interrupted_;
}

bool RunPace::sleep(std::chrono::milliseconds time)
{
    const auto deadline = now() + time;
    Kep::MutexLock lock(mutex_);
    while (!interrupted_)
        if (!lock.waitUntil(wake_, deadline))
            return !interrupted_;
    return false;
}

void RunPace::rest(std::chrono::milliseconds time)
{
    std::this_thread::sleep_for(time);
}

} // namespace Host
