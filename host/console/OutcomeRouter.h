/// Leads what is observed of SNMP sessions to the runs that they belong to.
#pragma once

#include "Kep/Host/Mutex.h"
#include "Kep/Host/Outcomes.h"
#include "host/RunOutcomes.h"

#include <memory>
#include <unordered_map>

namespace Host {

/// Any thread.
class OutcomeRouter : public Kep::Host::IOutcomeObserver {
public:
    /// From now on, what belongs to `call` goes to `outcomes`.
    void add(Kep::Host::CallId call, std::shared_ptr<RunOutcomes> outcomes);

    void remove(Kep::Host::CallId call);

    void observe(const Kep::Host::Observation& observation) noexcept override;

private:
    std::shared_ptr<RunOutcomes> find(Kep::Host::CallId call) const;

    mutable Kep::Mutex mutex_;
    std::unordered_map<Kep::Host::CallId, std::shared_ptr<RunOutcomes>> runs_ KEP_GUARDED_BY(mutex_);
};

} // namespace Host
