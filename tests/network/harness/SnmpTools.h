/// net-snmp's command line tools, which tell what an agent answers independently of our programs.
#pragma once

#include "tests/network/harness/ChildProcess.h"
#include "tests/network/harness/SnmpProfile.h"

#include <string>

namespace NetworkTests {

/// Whether the agent answers a request with this profile within the given time.
bool answers(const Endpoint& agent, const SnmpProfile& profile, const TestNetwork* network = nullptr,
             const std::string& seconds = "1");

/// What `snmpget` prints for the value of an OID, its type in front, such as `STRING: "abc"`.
std::string getWithTool(const Endpoint& agent, const SnmpProfile& profile, const std::string& oid);

/// Waits until the agent answers. Throws `std::runtime_error` with the program's messages when it does not, or ends.
void waitUntilAnswers(ChildProcess& program, const Endpoint& agent, const SnmpProfile& profile,
                      const TestNetwork* network);

} // namespace NetworkTests
