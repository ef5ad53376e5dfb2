/// Tests with agents on addresses of their own, and sweeps over them.
#pragma once

#include "tests/network/Devices.h"
#include "tests/network/harness/Loopback.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace NetworkTests {

/// Agents on ownAddress(1) to ownAddress(9), all on one port.
class AgentNetwork : public testing::Test {
protected:
    /// Starts an agent at an address that has none; `profiles` may read it.
    void start(int lastOctet, const Device& device, const std::vector<SnmpProfile>& profiles);
    void stop(int lastOctet) { agents_.erase(lastOctet); }

    int agentCount() const { return static_cast<int>(agents_.size()); }
    std::uint16_t port() const { return port_; }

    /// The records of the printers that run, in the order of their addresses.
    std::vector<Document> printers() const;

    /// A sweep on the agents' port that waits for them patiently.
    Sweep sweepOf(const std::string& target, const std::vector<std::string>& options) const;

private:
    struct Agent {
        std::unique_ptr<Snmpd> process;
        Document record;
    };

    std::uint16_t port_ = freeUdpPort({ownAddress(1), ownAddress(2), ownAddress(3), ownAddress(4), ownAddress(5),
                                       ownAddress(6), ownAddress(7), ownAddress(8), ownAddress(9)});
    std::map<int, Agent> agents_;
};

} // namespace NetworkTests
