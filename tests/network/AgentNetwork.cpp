#include "tests/network/AgentNetwork.h"

namespace NetworkTests {

void AgentNetwork::start(int lastOctet, const Device& device, const std::vector<SnmpProfile>& profiles)
{
    agents_[lastOctet] = {std::make_unique<Snmpd>(Endpoint{ownAddress(lastOctet), port_}, device.data, profiles),
                          device.record};
}

std::vector<Document> AgentNetwork::printers() const
{
    std::vector<Document> records;
    for (const auto& [lastOctet, agent] : agents_) {
        if (!agent.record.is_null()) {
            records.push_back(agent.record);
        }
    }
    return records;
}

Sweep AgentNetwork::sweepOf(const std::string& target, const std::vector<std::string>& options) const
{
    Sweep sweep{.arguments = {target, "--port", std::to_string(port_), "-t", "2", "-r", "1"}};
    sweep.arguments.insert(sweep.arguments.end(), options.begin(), options.end());
    return sweep;
}

} // namespace NetworkTests
