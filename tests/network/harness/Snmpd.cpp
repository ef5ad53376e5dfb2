#include "tests/network/harness/Snmpd.h"

#include "tests/network/harness/SnmpTools.h"

#include <stdexcept>

namespace NetworkTests {
namespace {

/// A community that only the harness uses: to see that the agent is there.
constexpr char readinessCommunity[] = "is-it-there";

/// Where the agent keeps its engine from one start to the next.
constexpr char persistentFolder[] = "persistent";

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
    return user + "\nrouser " + profile.user + " " + securityWord(profile) + "\n";
}

std::string accessLines(const std::vector<SnmpProfile>& profiles)
{
    std::string text = "dontLogTCPWrappersConnects yes\n" + accessLines(v2c(readinessCommunity));
    for (const SnmpProfile& profile : profiles) {
        text += accessLines(profile);
    }
    return text;
}

std::string configuration(const AgentData& data, const std::vector<SnmpProfile>& profiles)
{
    std::string text = accessLines(profiles);
    for (const auto& [oid, value] : data) {
        text += overrideLine(oid, value);
    }
    return text;
}

std::string configuration(const OwnTables& tables, const std::vector<SnmpProfile>& profiles)
{
    std::string text = accessLines(profiles) + "sysName " + tables.systemName + "\n";
    if (!tables.context.empty()) {
        text += "proxy -Cn " + tables.context + " -v 2c -c " + readinessCommunity + " " + tables.behind.text() +
                " .1.3.6.1.2.1.1\n";
    }
    return text;
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
    : endpoint_(endpoint)
{
    command_.network = network;
    prepare(configuration(data, profiles), {"-I", modules});
    start();
}

Snmpd::Snmpd(const Endpoint& endpoint, const OwnTables& tables, const std::vector<SnmpProfile>& profiles)
    : endpoint_(endpoint)
{
    prepare(configuration(tables, profiles), {});
    start();
}

void Snmpd::restart()
{
    process_.reset();
    start();
}

void Snmpd::replace()
{
    process_.reset();
    std::filesystem::remove_all(folder_ / persistentFolder);
    start();
}

void Snmpd::prepare(const std::string& configuration, const std::vector<std::string>& options)
{
    folder_.write("snmpd.conf", configuration);
    const std::string persistent = folder_ / persistentFolder;
    command_.words = {"snmpd", "-f", "-Lo"};
    command_.words.insert(command_.words.end(), options.begin(), options.end());
    command_.words.push_back(endpoint_.text());
    // The persistent folder is read, too, or else the agent would be another engine after each start.
    command_.environment = {{"MIBS", ""},
                            {"SNMP_PERSISTENT_DIR", persistent},
                            {"SNMPCONFPATH", folder_.path().string() + ":" + persistent}};
}

void Snmpd::start()
{
    folder_.makeFolder(persistentFolder);
    process_ = std::make_unique<ChildProcess>(command_);
    waitUntilAnswers(*process_, endpoint_, v2c(readinessCommunity), command_.network);
}

} // namespace NetworkTests
