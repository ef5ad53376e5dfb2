#include "tests/network/MatrixAgents.h"

#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Snmpd.h"
#include "tests/network/harness/Snmpsim.h"
#include "tests/network/harness/TemporaryFolder.h"
#include "tests/unit/kep/snmp/Sessions.h"

#include <map>

namespace NetworkTests {
namespace {

namespace fs = std::filesystem;

class SnmpdAgent : public MatrixAgent {
public:
    explicit SnmpdAgent(const std::vector<AgentUser>& users)
        : behind_(freeEndpoint(), OwnTables{secondName}, {}),
          agent_(freeEndpoint(), OwnTables{.systemName = name, .context = secondContext, .behind = behind_.endpoint()},
                 readersOf(users))
    {}

    std::string make() const override { return "snmpd"; }
    Endpoint endpoint() const override { return agent_.endpoint(); }
    std::string community() const override { return testCommunity; }
    std::string context() const override { return ""; }
    void restart() override { agent_.restart(); }
    void replace() override { agent_.replace(); }

private:
    Snmpd behind_;
    Snmpd agent_;
};

class SimulatorAgent : public MatrixAgent {
public:
    explicit SimulatorAgent(const std::vector<AgentUser>& users)
        : recording_(folder_.write("first.snmprec", recordingOf(name))),
          second_(folder_.write("second.snmprec", recordingOf(secondName))),
          port_(freeUdpPort({otherDevice_, device_})), readers_(readersOf(users))
    {
        start({{device_, recording_}});
    }

    std::string make() const override { return "snmpsimd"; }
    Endpoint endpoint() const override { return {device_, port_}; }
    std::string community() const override { return Snmpsim::reaching(v3("", "")).context; }
    std::string context() const override { return community(); }
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
        simulator_ = std::make_unique<Snmpsim>(devices, port_, readers_,
                                               std::map<std::string, fs::path>{{secondContext, second_}});
    }

    TemporaryFolder folder_;
    const std::string otherDevice_ = ownAddress(1);
    const std::string device_ = ownAddress(2);
    const fs::path recording_;
    const fs::path second_;
    const std::uint16_t port_;
    const std::vector<SnmpProfile> readers_;
    std::unique_ptr<Snmpsim> simulator_;
};

} // namespace

std::unique_ptr<MatrixAgent> matrixSnmpd(const std::vector<AgentUser>& users)
{
    return std::make_unique<SnmpdAgent>(users);
}

std::unique_ptr<MatrixAgent> matrixSimulator(const std::vector<AgentUser>& users)
{
    return std::make_unique<SimulatorAgent>(users);
}

std::shared_ptr<Kep::Snmp::ProfileV3> profileAt(const MatrixAgent& agent, const AgentUser& user)
{
    auto profile = profileFor(user, agent.endpoint().port);
    profile->context = agent.context();
    return profile;
}

} // namespace NetworkTests
