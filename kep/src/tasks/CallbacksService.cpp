#include "tasks/CallbacksService.h"

namespace Kep::Platform {

bool CallbacksService::enter()
{
    const MutexLock lock(mutex_);
    if (closed_) {
        return false;
    }
    ++tasks_;
    return true;
}

void CallbacksService::leave()
{
    const MutexLock lock(mutex_);
    if (--tasks_ == 0 && closed_) {
        idle_.notify_all();
    }
}

void CallbacksService::close()
{
    MutexLock lock(mutex_);
    closed_ = true;
    while (tasks_ != 0) {
        lock.wait(idle_);
    }
}

void CallbacksService::reopen()
{
    const MutexLock lock(mutex_);
    closed_ = false;
}

} // namespace Kep::Platform
