/// Asks an agent a question: sends, waits, tries again.
#pragma once

#include "snmp/Failure.h"
#include "snmp/Request.h"
#include "snmp/Wire.h"

#include <variant>

namespace Kep::Snmp {

/// A reply, or why there is none. Most addresses of a sweep never answer, and an exception that passes through many
/// frames costs more than all else that is done for one of them; so silence is returned, and thrown where it ends up.
using Answer = std::variant<Reply, Failure>;

/// Takes the reply out. Throws the failure instead.
Reply takeReply(Answer&& answer);

/// Sends `question` over `wire` until it is answered: one try and as many more as the host settings say, each as long
/// as they say, and none of it after `limit`. Holds no lock while it waits. The reply of a discovery is empty. Throws
/// `Failure` when the port is closed or the agent refuses.
Answer exchange(Wire& wire, Security& security, const Question& question,
                Wire::Clock::time_point limit = Wire::Clock::time_point::max());

} // namespace Kep::Snmp
