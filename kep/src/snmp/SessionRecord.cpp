#include "snmp/SessionRecord.h"

#include "Kep/Net.h"
#include "base/CurrentCall.h"

namespace Kep::Snmp {

SessionRecord::~SessionRecord()
{
    if (!address_ || (!failure_ && !answered_))
        return;
    try {
        tell();
    } catch (const std::exception&) {
        return; // nobody is told
    }
}

void SessionRecord::begin(const std::string& address)
{
    unsigned long number = 0;
    if (Net::parseIpAddress(address, number))
        address_ = static_cast<std::uint32_t>(number);
    call_ = currentCall();
}

void SessionRecord::failed(Host::Outcome outcome, std::string_view problem)
{
    if (failure_)
        return;
    failure_ = outcome;
    problem_ = problem;
    if (outcome == Host::Outcome::Silent && engine_ == Engine::AskedInSecret && !answered_)
        problem_ += " to an encrypted request, as with a wrong privacy password or protocol";
}

// An agent that has spoken before is neither silent nor closed. It does not answer what it cannot decipher.
Host::Outcome SessionRecord::outcome() const noexcept
{
    using Host::Outcome;
    if (!failure_)
        return Outcome::Answered;
    if (answered_)
        return Outcome::Failed;
    if (engine_ == Engine::AskedInSecret && *failure_ == Outcome::Silent)
        return Outcome::WrongCredentials;
    return engine_ == Engine::None || *failure_ == Outcome::WrongCredentials ? *failure_ : Outcome::Failed;
}

void SessionRecord::tell() const
{
    if (const auto observer = outcomeObserver())
        observer->observe({.call = call_, .address = *address_, .outcome = outcome(), .problem = problem_});
}

} // namespace Kep::Snmp
