#include "Kep/Host/CookieCalls.h"

#include <algorithm>

namespace Kep::Host {

void CookieCalls::starting(const std::string& cookie, CallId call)
{
    const MutexLock lock(mutex_);
    if (calls_.size() >= sweepAt_) {
        forgetEnded();
    }
    calls_[cookie].push_back(call);
}

void CookieCalls::started(const std::string& cookie, CallId call)
{
    const MutexLock lock(mutex_);
    if (const auto found = calls_.find(cookie); found != calls_.end()) {
        Calls& calls = found->second;
        if (const auto place = std::ranges::find(calls, call); place != calls.end()) {
            calls.erase(calls.begin(), place);
        }
    }
}

void CookieCalls::failed(const std::string& cookie, CallId call)
{
    const MutexLock lock(mutex_);
    if (const auto found = calls_.find(cookie); found != calls_.end()) {
        std::erase(found->second, call);
        if (found->second.empty()) {
            calls_.erase(found);
        }
    }
}

void CookieCalls::withdrawAndWait(const std::string& cookie)
{
    const CallId call = callOf(cookie);
    withdraw(call);
    waitForWork(call);
}

std::size_t CookieCalls::size() const
{
    const MutexLock lock(mutex_);
    std::size_t count = 0;
    for (const auto& [cookie, calls] : calls_) {
        count += calls.size();
    }
    return count;
}

// 0, which is no call, for a cookie that is not known.
CallId CookieCalls::callOf(const std::string& cookie) const
{
    const MutexLock lock(mutex_);
    const auto found = calls_.find(cookie);
    return found == calls_.end() ? 0 : found->second.back();
}

void CookieCalls::forgetEnded()
{
    std::erase_if(calls_, [](const auto& entry) { return std::ranges::all_of(entry.second, hasEnded); });
    sweepAt_ = std::max(fewestToForget, 2 * calls_.size());
}

} // namespace Kep::Host
