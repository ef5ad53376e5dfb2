/// net-snmp's agent.
#pragma once

#include "tests/network/harness/ChildProcess.h"
#include "tests/network/harness/SnmpProfile.h"

#include <map>
#include <memory>
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

/// The machine's own tables, as an agent shows them.
struct OwnTables {
    std::string systemName; ///< sysName
    /// A context that every user may ask in, and the agent of this harness whose system group it then passes on; none
    /// when empty.
    std::string context = {};
    Endpoint behind = {};
};

/// A running snmpd that `profiles` may read; a user has the level that the profile's protocols make.
class Snmpd {
public:
    /// One that holds `data` and none of the machine's own tables. Returns when it answers; throws
    /// `std::runtime_error` when it does not.
    Snmpd(const Endpoint& endpoint, const AgentData& data, const std::vector<SnmpProfile>& profiles,
          const TestNetwork* network = nullptr);

    /// One that holds `tables`. Throws as the other does.
    Snmpd(const Endpoint& endpoint, const OwnTables& tables, const std::vector<SnmpProfile>& profiles);

    const Endpoint& endpoint() const { return endpoint_; }

    /// Ends it and starts it again, as the same engine. Throws as the constructors do.
    void restart();

    /// As `restart`, but as another engine.
    void replace();

private:
    void prepare(const std::string& configuration, const std::vector<std::string>& options);
    void start();

    TemporaryFolder folder_;
    const Endpoint endpoint_;
    Command command_;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace NetworkTests
