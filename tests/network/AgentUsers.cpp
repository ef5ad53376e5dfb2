#include "tests/network/AgentUsers.h"

#include "tests/unit/kep/snmp/Sessions.h"

namespace NetworkTests {
namespace {

/// The words of the net-snmp tools for the codes; empty for what the agents lack.
std::string authWord(std::int32_t code)
{
    switch (code) {
    case 2:
        return "MD5";
    case 3:
        return "SHA";
    default:
        return "";
    }
}

/// The key extension with 3DES is what the tools call -C. 128 bits need none, so its code is plain AES there.
std::string privacyWord(std::int32_t code)
{
    switch (code) {
    case 2:
        return "DES";
    case 4:
    case 22:
        return "AES";
    case 20:
        return "AES-192";
    case 21:
        return "AES-256";
    case 23:
        return "AES-192-C";
    case 24:
        return "AES-256-C";
    default:
        return "";
    }
}

} // namespace

AgentUser agentUser(const std::string& name, std::int32_t auth, std::int32_t privacy)
{
    return {.settings = {.name = name,
                         .version = "3",
                         .user = name,
                         .authProtocol = authWord(auth),
                         .authPassword = "authenticates" + name,
                         .privacyProtocol = privacyWord(privacy),
                         .privacyPassword = "encrypts" + name},
            .auth = auth,
            .privacy = privacy};
}

void PrintTo(const AgentUser& user, std::ostream* out)
{
    *out << user.settings.name;
}

std::vector<SnmpProfile> readersOf(const std::vector<AgentUser>& users)
{
    std::vector<SnmpProfile> readers = {v2c(testCommunity)};
    for (const AgentUser& user : users) {
        readers.push_back(user.settings);
    }
    return readers;
}

std::shared_ptr<Kep::Snmp::ProfileV3> profileFor(const AgentUser& user, std::uint16_t port)
{
    auto profile = std::make_shared<Kep::Snmp::ProfileV3>();
    profile->port = port;
    profile->userName = user.settings.user;
    profile->authProtocol = user.auth;
    profile->authPassword = user.settings.authPassword;
    profile->privacyProtocol = user.privacy;
    profile->privacyPassword = user.settings.privacyPassword;
    return profile;
}

std::string systemName(Kep::Snmp::Session& session)
{
    Kep::Variant value;
    session.get(".1.3.6.1.2.1.1.5.0", value);
    return std::string(value);
}

int walkSystem(Kep::Snmp::Session& session)
{
    const std::string system = ".1.3.6.1.2.1.1";
    std::string current = system;
    Kep::Variant value;
    for (int objects = 0;; ++objects) {
        session.getNext(current, current, value);
        if (!current.starts_with(system + ".")) {
            return objects;
        }
    }
}

} // namespace NetworkTests
