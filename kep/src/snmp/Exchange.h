/// Asks an agent a question: sends, waits, tries again.
#pragma once

#include "snmp/Request.h"
#include "snmp/Wire.h"

namespace Kep::Snmp {

/// Sends `question` over `wire` until it is answered: one try and as many more as the host settings say, each as long
/// as they say, and none of it after `limit`. Holds no lock while it waits. The reply of a discovery is empty. Throws
/// `Exception` when no answer comes, and at once when the port is closed or the agent refuses.
Reply exchange(Wire& wire, Security& security, const Question& question,
               Wire::Clock::time_point limit = Wire::Clock::time_point::max());

} // namespace Kep::Snmp
