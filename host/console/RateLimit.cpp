#include "host/console/RateLimit.h"

#include <algorithm>

namespace Host {

RateLimit::RateLimit(double perSecond, double burst) : perSecond_(perSecond), burst_(burst) {}

bool RateLimit::allow(const std::string& client, Time now)
{
    Kep::MutexLock lock(mutex_);
    if (buckets_.size() >= MostClients)
        forgetFull(now);
    Bucket& bucket = buckets_.try_emplace(client, Bucket{burst_, now}).first->second;
    bucket = {tokensAt(bucket, now), now};
    if (bucket.tokens < 1)
        return false;
    bucket.tokens -= 1;
    return true;
}

std::size_t RateLimit::size() const
{
    Kep::MutexLock lock(mutex_);
    return buckets_.size();
}

double RateLimit::tokensAt(const Bucket& bucket, Time now) const
{
    const std::chrono::duration<double> passed = now - bucket.filled;
    return std::min(burst_, bucket.tokens + std::max(0.0, passed.count()) * perSecond_);
}

/// When none is full there are more clients than can be told apart, and all begin anew.
void RateLimit::forgetFull(Time now)
{
    std::erase_if(buckets_, [&](const auto& each) { return tokensAt(each.second, now) >= burst_; });
    if (buckets_.size() >= MostClients)
        buckets_.clear();
}

} // namespace Host
