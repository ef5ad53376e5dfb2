/// The calls of one run of the console, whose work is noted.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/IPluginCalls.h"
#include "host/console/OutcomeRouter.h"

#include <memory>
#include <vector>

namespace Host {

/// Any thread.
class RunCalls : public IPluginCalls {
public:
    /// Has what is observed of the run's sessions led to `outcomes` as long as it lives. Keeps the references.
    RunCalls(IPluginCalls& plugin, OutcomeRouter& router, std::shared_ptr<RunOutcomes> outcomes);
    ~RunCalls() override;
    RunCalls(const RunCalls&) = delete;
    RunCalls& operator=(const RunCalls&) = delete;

    std::string call(const PluginCall& call, const Entering& entering) override;
    void withdraw(Kep::Host::CallId work) override;

    /// What is left to do of all its starts.
    Kep::Host::CallWork work() const;

private:
    void started(Kep::Host::CallId work);

    IPluginCalls& plugin_;
    OutcomeRouter& router_;
    const std::shared_ptr<RunOutcomes> outcomes_;

    mutable Kep::Mutex mutex_;
    std::vector<Kep::Host::CallId> starts_ KEP_GUARDED_BY(mutex_);
};

} // namespace Host
