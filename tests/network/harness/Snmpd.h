/// net-snmp's agent.
#pragma once

#include "tests/network/harness/ChildProcess.h"
#include "tests/network/harness/SnmpProfile.h"

#include <map>
#include <string>
#include <vector>

namespace NetworkTests {

/// What an agent holds: by OID with its leading dot, a type of snmpd.conf's "override" and the value.
struct AgentValue {
    enum class Type { octets, objectId, integer };
    Type type;
    std::string value; ///< octets: the bytes; objectId: dotted; integer: decimal
};
using AgentData = std::map<std::string, AgentValue>;

AgentValue octets(std::string bytes);
AgentValue objectId(std::string oid);
AgentValue integer(int number);

/// A running snmpd that holds `data` and none of the machine's own tables, and lets `profiles` read it.
class Snmpd {
public:
    /// Returns when it answers; throws `std::runtime_error` when it does not.
    Snmpd(const Endpoint& endpoint, const AgentData& data, const std::vector<SnmpProfile>& profiles,
          const TestNetwork* network = nullptr);

private:
    TemporaryFolder folder_;
    ChildProcess process_;
};

} // namespace NetworkTests
