#include "tests/network/MatrixAgents.h"

#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Snmpsim.h"
#include "tests/network/harness/TemporaryFolder.h"
#include "tests/unit/kep/snmp/Sessions.h"
#include "tests/unit/kep/snmp/Snmpd.h"

#include <map>

namespace NetworkTests {
namespace {

namespace fs = std::filesystem;

/// The codes in the words of the net-snmp tools. 128 bits need no key extension, so its code is plain AES there.
const std::map<std::int32_t, std::string> authWords = {{1, ""}, {2, "MD5"}, {3, "SHA"}};
const std::map<std::int32_t, std::string> privacyWords = {{1, ""},           {2, "DES"},       {4, "AES"},
                                                          {20, "AES-192"},   {21, "AES-256"},  {22, "AES"},
                                                          {23, "AES-192-C"}, {24, "AES-256-C"}};

std::string levelWord(const MatrixUser& user)
{
    return user.privacy != 1 ? "priv" : user.auth != 1 ? "auth" : "noauth";
}

std::string snmpdLines(const MatrixUser& user)
{
    const SnmpProfile& settings = user.settings;
    std::string line = "createUser " + settings.user;
    if (!settings.authProtocol.empty()) {
        line += " " + settings.authProtocol + " " + settings.authPassword;
    }
    if (!settings.privacyProtocol.empty()) {
        line += " " + settings.privacyProtocol + " " + settings.privacyPassword;
    }
    return line + "\nrouser " + settings.user + " " + levelWord(user) + " .1 *\n";
}

std::string snmpdConfiguration(const std::string& systemName)
{
    return "rocommunity " + std::string(testCommunity) + "\nsysName " + systemName + "\n";
}

class SnmpdAgent : public MatrixAgent {
public:
    explicit SnmpdAgent(const std::vector<MatrixUser>& users)
        : behind_(snmpdConfiguration(secondName)), agent_(configuration(users, behind_.port()))
    {}

    std::string make() const override { return "snmpd"; }
    Endpoint endpoint() const override { return {"127.0.0.1", agent_.port()}; }
    std::string community() const override { return testCommunity; }
    std::string context() const override { return ""; }
    std::string secondContext() const override { return "second"; }
    void restart() override { agent_.restart(); }
    void replace() override { agent_.replace(); }

private:
    static std::string configuration(const std::vector<MatrixUser>& users, std::uint16_t second)
    {
        std::string text = snmpdConfiguration(name);
        for (const MatrixUser& user : users) {
            text += snmpdLines(user);
        }
        return text + "proxy -Cn second -v 2c -c " + testCommunity + " 127.0.0.1:" + std::to_string(second) +
               " .1.3.6.1.2.1.1\n";
    }

    ::Snmpd behind_;
    ::Snmpd agent_;
};

class SimulatorAgent : public MatrixAgent {
public:
    explicit SimulatorAgent(const std::vector<MatrixUser>& users)
        : recording_(folder_.write("first.snmprec", recordingOf(name))),
          second_(folder_.write("second.snmprec", recordingOf(secondName))), port_(freeUdpPort({otherDevice_, device_}))
    {
        for (const MatrixUser& user : users) {
            users_.push_back(user.settings);
        }
        start({{device_, recording_}});
    }

    std::string make() const override { return "snmpsimd"; }
    Endpoint endpoint() const override { return {device_, port_}; }
    std::string community() const override { return Snmpsim::reaching(v3("", "")).context; }
    std::string context() const override { return community(); }
    std::string secondContext() const override { return "second"; }
    void restart() override { start({{device_, recording_}}); }

    /// The simulator's engine IDs follow the devices' places, and this device becomes the second.
    void replace() override { start({{otherDevice_, recording_}, {device_, recording_}}); }

private:
    static std::string recordingOf(const std::string& systemName)
    {
        return "1.3.6.1.2.1.1.1.0|4|a device\n1.3.6.1.2.1.1.2.0|6|1.3.6.1.4.1.8072\n1.3.6.1.2.1.1.3.0|67|1\n"
               "1.3.6.1.2.1.1.4.0|4|nobody\n1.3.6.1.2.1.1.5.0|4|" +
               systemName + "\n1.3.6.1.2.1.1.6.0|4|nowhere\n1.3.6.1.2.1.2.1.0|2|0\n";
    }

    void start(const std::map<std::string, fs::path>& devices)
    {
        simulator_.reset();
        simulator_ = std::make_unique<Snmpsim>(devices, port_, users_,
                                               std::map<std::string, fs::path>{{secondContext(), second_}});
    }

    TemporaryFolder folder_;
    const std::string otherDevice_ = ownAddress(1);
    const std::string device_ = ownAddress(2);
    const fs::path recording_;
    const fs::path second_;
    const std::uint16_t port_;
    std::vector<SnmpProfile> users_;
    std::unique_ptr<Snmpsim> simulator_;
};

} // namespace

MatrixUser matrixUser(const std::string& name, std::int32_t auth, std::int32_t privacy)
{
    const auto privacyWord = privacyWords.find(privacy);
    MatrixUser user;
    user.auth = auth;
    user.privacy = privacy;
    user.settings = {.name = name,
                     .version = "3",
                     .user = name,
                     .authProtocol = authWords.at(auth),
                     .authPassword = "authenticates" + name,
                     .privacyProtocol = privacyWord == privacyWords.end() ? "" : privacyWord->second,
                     .privacyPassword = "encrypts" + name};
    return user;
}

std::unique_ptr<MatrixAgent> matrixSnmpd(const std::vector<MatrixUser>& users)
{
    return std::make_unique<SnmpdAgent>(users);
}

std::unique_ptr<MatrixAgent> matrixSimulator(const std::vector<MatrixUser>& users)
{
    return std::make_unique<SimulatorAgent>(users);
}

std::shared_ptr<Kep::Snmp::ProfileV3> profileAt(const MatrixAgent& agent, const MatrixUser& user)
{
    auto profile = std::make_shared<Kep::Snmp::ProfileV3>();
    profile->port = agent.endpoint().port;
    profile->userName = user.settings.user;
    profile->authProtocol = user.auth;
    profile->authPassword = user.settings.authPassword;
    profile->privacyProtocol = user.privacy;
    profile->privacyPassword = user.settings.privacyPassword;
    profile->context = agent.context();
    return profile;
}

} // namespace NetworkTests
