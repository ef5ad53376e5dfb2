#include "base/CurrentCall.h"

#include <utility>

namespace Kep {
namespace {

thread_local Host::CallId current = 0;

} // namespace

Host::CallId currentCall() noexcept
{
    return current;
}

Host::CallId enterCall(Host::CallId call) noexcept
{
    return std::exchange(current, call);
}

} // namespace Kep
