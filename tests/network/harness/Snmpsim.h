/// The SNMP agent simulator snmpsim.
#pragma once

#include "tests/network/harness/ChildProcess.h"
#include "tests/network/harness/SnmpProfile.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace NetworkTests {

/// A running snmpsimd that serves recordings, each at an address of its own: with the community "public", and to the
/// version 3 users of `profiles` in the context "public".
class Snmpsim {
public:
    using Files = std::map<std::string, std::filesystem::path>;

    /// `devices`: address and `.snmprec` file of each device; all on `port`. `contexts`: what each device also holds in
    /// contexts other than "public". Returns when the last of them answers; throws `std::runtime_error` when it does
    /// not.
    Snmpsim(const Files& devices, std::uint16_t port, const std::vector<SnmpProfile>& profiles = {},
            const Files& contexts = {});

    /// `profile` as it reaches the devices: version 3 profiles get their context.
    static SnmpProfile reaching(SnmpProfile profile);

private:
    Command prepare(const Files& devices, std::uint16_t port, const std::vector<SnmpProfile>& profiles,
                    const Files& contexts);

    TemporaryFolder folder_;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace NetworkTests
