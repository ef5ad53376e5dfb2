/// The credentials of a sweep, and how each program wants them.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace NetworkTests {

/// Where an agent listens.
struct Endpoint {
    std::string address;
    std::uint16_t port;

    std::string text() const { return address + ":" + std::to_string(port); }
};

/// Protocol names are those of the net-snmp tools; an empty one stands for none, and then its password counts for
/// nothing. Users and passwords hold no blanks: the simulator could not take them.
struct SnmpProfile {
    std::string name;
    std::string version;
    std::string community = {};
    std::string user = {};
    std::string authProtocol = {};
    std::string authPassword = {};
    std::string privacyProtocol = {};
    std::string privacyPassword = {};
    std::string context = {};

    /// The security level as the net-snmp tools spell it.
    std::string level() const;

    /// Options as the net-snmp tools take them; without `withPasswords` the passwords are left out.
    std::vector<std::string> options(bool withPasswords = true) const;
};

SnmpProfile v1(const std::string& community = "public");
SnmpProfile v2c(const std::string& community = "public");

/// A user of version 3 that is named after its protocols, with passwords of its own.
SnmpProfile v3(const std::string& authProtocol, const std::string& privacyProtocol);

/// Version 1, 2c and 3 with the protocols that agents of every make have.
std::vector<SnmpProfile> commonProfiles();

/// For GoogleTest: the profile's name, letters and digits only, for messages and names of tests.
void PrintTo(const SnmpProfile& profile, std::ostream* out);

} // namespace NetworkTests
