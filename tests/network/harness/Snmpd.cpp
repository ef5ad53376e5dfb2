#include "tests/network/harness/Snmpd.h"

#include "tests/network/harness/SnmpTools.h"

#include <stdexcept>

namespace NetworkTests {
namespace {

/// A community that only the harness uses: to see that the agent is there.
constexpr char readinessCommunity[] = "is-it-there";

/// The modules without which the agent serves nobody, and the one that holds given values.
constexpr char modules[] = "usmConf,usmUser,vacm_conf,snmpEngine,override";

std::string hexadecimal(const std::string& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "0x";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value / 16];
        text += digits[value % 16];
    }
    return text;
}

std::string overrideLine(const std::string& oid, const AgentValue& value)
{
    const std::string start = "override " + oid;
    switch (value.type) {
    case AgentValue::Type::octets:
        return start + " octet_str " + (value.value.empty() ? "\"\"" : hexadecimal(value.value)) + "\n";
    case AgentValue::Type::objectId:
        return start + " object_id " + value.value + "\n";
    case AgentValue::Type::integer:
        return start + " integer " + value.value + "\n";
    }
    throw std::logic_error("unknown type");
}

std::string securityWord(const SnmpProfile& profile)
{
    const std::string level = profile.level();
    return level == "noAuthNoPriv" ? "noauth" : level == "authNoPriv" ? "auth" : "priv";
}

std::string accessLines(const SnmpProfile& profile)
{
    if (profile.version != "3") {
        return "rocommunity " + profile.community + "\n";
    }
    std::string user = "createUser " + profile.user;
    if (!profile.authProtocol.empty()) {
        user += " " + profile.authProtocol + " \"" + profile.authPassword + "\"";
    }
    if (!profile.privacyProtocol.empty()) {
        user += " " + profile.privacyProtocol + " \"" + profile.privacyPassword + "\"";
    }
    const std::string anyOid = " .1";
    const std::string context = profile.context.empty() ? "" : anyOid + " " + profile.context;
    return user + "\nrouser " + profile.user + " " + securityWord(profile) + context + "\n";
}

std::string configuration(const AgentData& data, const std::vector<SnmpProfile>& profiles)
{
    std::string text = "dontLogTCPWrappersConnects yes\n" + accessLines(v2c(readinessCommunity));
    for (const SnmpProfile& profile : profiles) {
        text += accessLines(profile);
    }
    for (const auto& [oid, value] : data) {
        text += overrideLine(oid, value);
    }
    return text;
}

Command command(const TemporaryFolder& folder, const Endpoint& endpoint, const AgentData& data,
                const std::vector<SnmpProfile>& profiles, const TestNetwork* network)
{
    const std::string file = folder.write("snmpd.conf", configuration(data, profiles));
    const std::string persistent = folder.makeFolder("persistent");
    return {.words = {"snmpd", "-f", "-Lo", "-C", "-c", file, "-I", modules, endpoint.text()},
            .environment = {{"MIBS", ""}, {"SNMP_PERSISTENT_DIR", persistent}, {"SNMPCONFPATH", folder.path()}},
            .network = network};
}

} // namespace

AgentValue octets(std::string bytes)
{
    return {AgentValue::Type::octets, std::move(bytes)};
}

AgentValue objectId(std::string oid)
{
    return {AgentValue::Type::objectId, std::move(oid)};
}

AgentValue integer(int number)
{
    return {AgentValue::Type::integer, std::to_string(number)};
}

Snmpd::Snmpd(const Endpoint& endpoint, const AgentData& data, const std::vector<SnmpProfile>& profiles,
             const TestNetwork* network)
    : process_(command(folder_, endpoint, data, profiles, network))
{
    waitUntilAnswers(process_, endpoint, v2c(readinessCommunity), network);
}

} // namespace NetworkTests
