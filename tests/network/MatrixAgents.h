/// Agents of two makes that are not ours, set up alike: the same users, the same objects.
#pragma once

#include "tests/network/AgentUsers.h"

namespace NetworkTests {

/// An agent that holds the system group, knows the community "perch-4711" and the users that it is given.
class MatrixAgent {
public:
    virtual ~MatrixAgent() = default;

    virtual std::string make() const = 0;
    virtual Endpoint endpoint() const = 0;

    /// Its community, and the context that it knows besides `secondContext`.
    virtual std::string community() const = 0;
    virtual std::string context() const = 0;

    /// Ends and starts it, as the same engine or as another one.
    virtual void restart() = 0;
    virtual void replace() = 0;

    /// sysName in `context` and in `secondContext`.
    static constexpr const char* name = "matrix agent";
    static constexpr const char* secondContext = "second";
    static constexpr const char* secondName = "second context";
};

/// net-snmp's agent. Its second context is served by another agent, for which it is the proxy.
std::unique_ptr<MatrixAgent> matrixSnmpd(const std::vector<AgentUser>& users);

/// The simulator. A context is a file of its own.
std::unique_ptr<MatrixAgent> matrixSimulator(const std::vector<AgentUser>& users);

/// What a session needs to be that user at the agent.
std::shared_ptr<Kep::Snmp::ProfileV3> profileAt(const MatrixAgent& agent, const AgentUser& user);

} // namespace NetworkTests
