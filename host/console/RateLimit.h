/// How many requests a client may make: a token bucket for each address.
#pragma once

#include "Kep/Host/Mutex.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <unordered_map>

namespace Host {

/// Any thread.
class RateLimit {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `perSecond` requests, and `burst` at once after a pause.
    RateLimit(double perSecond, double burst);

    /// Whether `client` may make a request at `now`, which then counts.
    bool allow(const std::string& client, Time now);

    /// How many clients are remembered; those whose bucket has filled again are forgotten from time to time.
    std::size_t size() const;

    static constexpr std::size_t MostClients = 4096;

private:
    struct Bucket {
        double tokens;
        Time filled;
    };

    double tokensAt(const Bucket& bucket, Time now) const;
    void forgetFull(Time now) KEP_REQUIRES(mutex_);

    const double perSecond_;
    const double burst_;
    mutable Kep::Mutex mutex_;
    std::unordered_map<std::string, Bucket> buckets_ KEP_GUARDED_BY(mutex_);
};

} // namespace Host
