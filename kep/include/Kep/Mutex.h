/// A standard mutex that clang's thread-safety analysis understands, and its scoped lock.
///
/// `Mutex` adds nothing to `std::mutex` but the annotations: not recursive, and a lock that fails throws
/// `std::system_error`. Members guarded by it are declared with `KEP_GUARDED_BY(mutex)`, functions that expect it
/// held with `KEP_REQUIRES(mutex)`; other compilers see plain code.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define KEP_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define KEP_THREAD_ANNOTATION(x)
#endif

#define KEP_CAPABILITY(name) KEP_THREAD_ANNOTATION(capability(name))
#define KEP_SCOPED_CAPABILITY KEP_THREAD_ANNOTATION(scoped_lockable)
#define KEP_GUARDED_BY(mutex) KEP_THREAD_ANNOTATION(guarded_by(mutex))
#define KEP_REQUIRES(...) KEP_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define KEP_EXCLUDES(...) KEP_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define KEP_ACQUIRE(...) KEP_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define KEP_RELEASE(...) KEP_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define KEP_NO_THREAD_SAFETY_ANALYSIS KEP_THREAD_ANNOTATION(no_thread_safety_analysis)

namespace Kep {

class KEP_CAPABILITY("mutex") Mutex {
public:
    void lock() KEP_ACQUIRE() { mutex_.lock(); }
    void unlock() KEP_RELEASE() { mutex_.unlock(); }

private:
    friend class MutexLock;
    std::mutex mutex_;
};

/// Holds a `Mutex` from construction to destruction, except where `unlock` ... `lock` open a gap and while one of
/// the waits sleeps. Used by the one thread that made it.
class KEP_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) KEP_ACQUIRE(mutex) : lock_(mutex.mutex_) {}
    ~MutexLock() KEP_RELEASE() = default;
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    void lock() KEP_ACQUIRE() { lock_.lock(); }
    void unlock() KEP_RELEASE() { lock_.unlock(); }

    /// Releases the mutex, sleeps until `condition` is notified (or wakes for no reason), and takes it again.
    void wait(std::condition_variable& condition) { condition.wait(lock_); }

    /// As `wait`, but at most until `deadline`; false when it passed first.
    template <class Clock, class Duration>
    bool waitUntil(std::condition_variable& condition, const std::chrono::time_point<Clock, Duration>& deadline)
    {
        return condition.wait_until(lock_, deadline) == std::cv_status::no_timeout;
    }

private:
    std::unique_lock<std::mutex> lock_;
};

} // namespace Kep
