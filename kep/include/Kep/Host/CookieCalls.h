/// Which call has started what goes by a cookie, so that its work can be withdrawn.
#pragma once

#include "Kep/Export.h"
#include "Kep/Host/Call.h"
#include "Kep/Mutex.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Kep::Host {

/// A cookie is a text under which callers name what they have started; it names what was started under it last. A host
/// tells of every start, and can then end the work of what a cookie names ahead of the operation that stops it: such
/// an operation may wait for that work with locks held, and other operations with it.
///
/// Any thread. Forgets calls that have ended, so it holds about as many as have work.
class KEP_API CookieCalls {
public:
    /// `call`, which is under way, is about to start something under `cookie`. From now on the cookie stands for it.
    void starting(const std::string& cookie, CallId call);

    /// The start has succeeded: what was started under the cookie before goes on without it.
    void started(const std::string& cookie, CallId call);

    /// The start has failed: the cookie stands for what it stood for before.
    void failed(const std::string& cookie, CallId call);

    /// Withdraws the work of the call that the cookie stands for, and sleeps until nothing is left of it: as long as
    /// what is running takes. A start still under way submits nothing any more that would run. Does nothing for a
    /// cookie that is not known. Not to be called by a task.
    void withdrawAndWait(const std::string& cookie);

    /// How many calls are remembered.
    std::size_t size() const;

private:
    using Calls = std::vector<CallId>; // in the order of their starts, each instead of those before it; never empty

    CallId callOf(const std::string& cookie) const;
    void forgetEnded() KEP_REQUIRES(mutex_);

    static constexpr std::size_t fewestToForget = 64;

    mutable Mutex mutex_;
    std::map<std::string, Calls> calls_ KEP_GUARDED_BY(mutex_);
    std::size_t sweepAt_ KEP_GUARDED_BY(mutex_) = fewestToForget; // cookies at which those that ended go
};

} // namespace Kep::Host
