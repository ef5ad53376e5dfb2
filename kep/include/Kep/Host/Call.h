/// Follows and withdraws the work that one call into a plug-in has caused.
#pragma once

#include "Kep/Export.h"

#include <cstddef>
#include <cstdint>

namespace Kep::Host {

using CallId = std::uint64_t; ///< never 0, never used twice in a process

/// The scope of one call. A host makes one on the stack before it enters a plug-in: tasks that this thread submits
/// while it lives, and tasks that those submit, belong to the call. Scopes may nest; the innermost counts. Tied to the
/// thread that made it. Throws nothing.
class KEP_API Call {
public:
    Call() noexcept;
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    CallId id() const noexcept { return id_; }

private:
    CallId id_;
    CallId outer_;
};

/// Tasks of a call that have not finished: waiting for a thread, and running (their finish callbacks included).
struct CallWork {
    std::size_t queued = 0;
    std::size_t running = 0;
};

/// What is left of the call's work. Any thread; takes the queue's lock briefly.
KEP_API CallWork workOf(CallId call);

/// Sleeps until nothing is left of the call's work. What the call itself submits later, if it is still under way, is
/// not waited for. Any thread but those that run tasks.
KEP_API void waitForWork(CallId call);

/// Whether the call has returned and nothing is left of its work: it will never have any again. Any thread; takes the
/// queue's lock briefly.
KEP_API bool hasEnded(CallId call);

/// Withdraws the call's work for good: its queued tasks, and those that running ones still submit, go straight to
/// their finish callbacks, on queue threads. Running callbacks are not disturbed. Returns at once. Any thread; takes
/// the queue's lock briefly. Throws only `std::bad_alloc`.
KEP_API void withdraw(CallId call);

} // namespace Kep::Host
