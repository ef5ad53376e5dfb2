/// Users of version 3 as agents of other makes and sessions of ours know them, and what such sessions see.
#pragma once

#include "Kep/Snmp/Profile.h"
#include "Kep/Snmp/Session.h"
#include "tests/network/harness/SnmpProfile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace NetworkTests {

/// What the agents are told of a user, and the codes that a profile has for its protocols.
struct AgentUser {
    SnmpProfile settings;
    std::int32_t auth = 1;
    std::int32_t privacy = 1;
};

/// A user `name` with passwords of its own and protocols by the profiles' codes: 1 to 3 and 1 to 24. Its settings have
/// no privacy where agents lack the cipher.
AgentUser agentUser(const std::string& name, std::int32_t auth, std::int32_t privacy);

/// For GoogleTest: the user's name.
void PrintTo(const AgentUser& user, std::ostream* out);

/// What an agent is told so that `testCommunity` and the users may read it.
std::vector<SnmpProfile> readersOf(const std::vector<AgentUser>& users);

/// What a session needs to be that user at an agent on `port`.
std::shared_ptr<Kep::Snmp::ProfileV3> profileFor(const AgentUser& user, std::uint16_t port);

/// The value of sysName.
std::string systemName(Kep::Snmp::Session& session);

/// Walks the system group and counts its objects.
int walkSystem(Kep::Snmp::Session& session);

} // namespace NetworkTests
