#include "host/console/OutcomeRouter.h"

#include <utility>

namespace Host {

void OutcomeRouter::add(Kep::Host::CallId call, std::shared_ptr<RunOutcomes> outcomes)
{
    Kep::MutexLock lock(mutex_);
    runs_[call] = std::move(outcomes);
}

void OutcomeRouter::remove(Kep::Host::CallId call)
{
    Kep::MutexLock lock(mutex_);
    runs_.erase(call);
}

void OutcomeRouter::observe(const Kep::Host::Observation& observation) noexcept
{
    if (const auto outcomes = find(observation.call))
        outcomes->observe(observation);
}

std::shared_ptr<RunOutcomes> OutcomeRouter::find(Kep::Host::CallId call) const
{
    Kep::MutexLock lock(mutex_);
    const auto run = runs_.find(call);
    return run == runs_.end() ? nullptr : run->second;
}

} // namespace Host
