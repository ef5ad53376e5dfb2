/// What sessions throw when they know what it says about the agent.
#pragma once

#include "Kep/Host/Outcomes.h"
#include "Kep/Snmp/Exception.h"

#include <string>
#include <string_view>

namespace Kep::Snmp {

/// A failed request to `peer`, address and port; `what` names both.
class Failure final : public Exception {
public:
    Failure(Host::Outcome outcome, const std::string& peer, const std::string& problem)
        : Exception(peer + ": " + problem), outcome_(outcome), prefix_(peer.size() + 2)
    {}

    /// What became of the address, if nothing else is known of it.
    Host::Outcome outcome() const noexcept { return outcome_; }

    /// `what` without the peer; lasts as long as this.
    std::string_view problem() const noexcept { return std::string_view(what()).substr(prefix_); }

private:
    Host::Outcome outcome_;
    std::size_t prefix_;
};

} // namespace Kep::Snmp
