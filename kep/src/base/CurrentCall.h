/// Which call of the host the running thread works for.
#pragma once

#include "Kep/Host/Call.h"

namespace Kep {

/// The call of this thread; 0 when it works for none.
Host::CallId currentCall() noexcept;

/// Makes `call` the call of this thread and returns the one before.
Host::CallId enterCall(Host::CallId call) noexcept;

/// Works for `call` until the end of the scope, then for the call before again. Tied to the thread that made it.
class CurrentCall {
public:
    explicit CurrentCall(Host::CallId call) noexcept : outer_(enterCall(call)) {}
    ~CurrentCall() { enterCall(outer_); }
    CurrentCall(const CurrentCall&) = delete;
    CurrentCall& operator=(const CurrentCall&) = delete;

private:
    Host::CallId outer_;
};

} // namespace Kep
