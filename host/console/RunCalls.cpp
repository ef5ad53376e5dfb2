#include "host/console/RunCalls.h"

#include "host/Service.h"

#include <utility>

namespace Host {

RunCalls::RunCalls(IPluginCalls& plugin, OutcomeRouter& router, std::shared_ptr<RunOutcomes> outcomes)
    : plugin_(plugin), router_(router), outcomes_(std::move(outcomes))
{}

RunCalls::~RunCalls()
{
    Kep::MutexLock lock(mutex_);
    for (const Kep::Host::CallId work : starts_)
        router_.remove(work);
}

std::string RunCalls::call(const PluginCall& call, const Entering& entering)
{
    if (call.operation != StartOperation)
        return plugin_.call(call, entering);
    return plugin_.call(call, [&](Kep::Host::CallId work) {
        started(work);
        if (entering)
            entering(work);
    });
}

void RunCalls::withdraw(Kep::Host::CallId work)
{
    plugin_.withdraw(work);
}

Kep::Host::CallWork RunCalls::work() const
{
    Kep::MutexLock lock(mutex_);
    Kep::Host::CallWork sum;
    for (const Kep::Host::CallId start : starts_) {
        const Kep::Host::CallWork each = Kep::Host::workOf(start);
        sum.queued += each.queued;
        sum.running += each.running;
    }
    return sum;
}

void RunCalls::started(Kep::Host::CallId work)
{
    router_.add(work, outcomes_);
    Kep::MutexLock lock(mutex_);
    starts_.push_back(work);
}

} // namespace Host
