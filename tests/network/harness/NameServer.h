/// A name server that answers from a list.
#pragma once

#include "tests/network/harness/ChildProcess.h"

#include <map>
#include <string>
#include <vector>

namespace NetworkTests {

/// A running DNS server at port 53 of an address of a test's network. It knows names of addresses (PTR records), says
/// of all others that they do not exist, and keeps a list of what it was asked.
class NameServer {
public:
    /// `names`: host name by IPv4 address; an empty name leaves the question unanswered. Returns when it listens;
    /// throws `std::runtime_error` when it does not.
    NameServer(const TestNetwork& network, const std::string& address, const std::map<std::string, std::string>& names);

    /// The addresses whose names were asked for, each as often as it was.
    std::vector<std::string> asked() const;

private:
    ChildProcess process_;
};

} // namespace NetworkTests
