/// Samba's NetBIOS name server.
#pragma once

#include "tests/network/harness/ChildProcess.h"

#include <string>

namespace NetworkTests {

/// A running nmbd that gives the machine at one loopback address of a test's network its NetBIOS name.
class Nmbd {
public:
    /// `name`: at most 15 capital letters and digits. Returns when it answers a node status request; throws
    /// `std::runtime_error` when it does not.
    Nmbd(const TestNetwork& network, const std::string& address, const std::string& name);

private:
    TemporaryFolder folder_;
    std::string configuration_;
    ChildProcess process_;
};

} // namespace NetworkTests
