/// Addresses and ports of 127.0.0.0/8 for one test.
#pragma once

#include "tests/network/harness/Descriptor.h"
#include "tests/network/harness/SnmpProfile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace NetworkTests {

/// The /24 of 127.0.0.0/8 that belongs to this test process while it runs: no other one that runs at the same time
/// has it, so agents of tests that run side by side never meet.
std::string ownNetwork();

/// The address with the given last octet in `ownNetwork`.
std::string ownAddress(int lastOctet);

/// A UDP port that is free on all of `addresses`, below those that the system hands out by itself. Throws
/// `std::runtime_error` when none is found.
std::uint16_t freeUdpPort(const std::vector<std::string>& addresses);

/// `ownAddress(1)` and a port that is free there. Throws as `freeUdpPort` does.
Endpoint freeEndpoint();

/// Sockets that swallow what is sent to a port of some addresses and never answer, so that these addresses are silent
/// and not closed. "0.0.0.0" stands for all of 127.0.0.0/8.
class SilentAddresses {
public:
    /// Throws `std::system_error` when an address cannot be bound.
    SilentAddresses(const std::vector<std::string>& addresses, std::uint16_t port);

    /// Whether anything has arrived at the first address.
    bool asked() const;

private:
    std::vector<Descriptor> sockets_;
};

} // namespace NetworkTests
