/// The project's own simulated devices.
#pragma once

#include "tests/network/harness/Program.h"
#include "tests/network/harness/TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace NetworkTests {

/// A device of the lab.
struct LabDevice {
    std::string address;
    std::string profile;
    bool hostile = false;
    Document printer; ///< the record that a sweep must give; null for a device that is no printer
};

/// Which profile stands at which address.
using LabPlan = std::map<std::string, std::string>;

/// Whether devices of one profile get physical addresses and serial numbers of their own, or are as their profile says.
enum class Individuality { byAddress, verbatim };

/// A running printer-lab on addresses of 127.0.0.0/8. All other addresses are silent.
class Lab {
public:
    /// The default devices on a network such as 127.1.2.0/24, or the devices of a plan. Returns when the lab is ready;
    /// throws `std::runtime_error` when it is not.
    Lab(const std::string& network, std::uint16_t port);
    Lab(const LabPlan& plan, std::uint16_t port);

    /// What the program says about the devices of its default network, placed in `network`.
    static std::vector<LabDevice> list(const std::string& network, Individuality individuality);

    /// What the program says about the devices of a plan. Of hostile ones, that is what they would be if honest.
    static std::vector<LabDevice> list(const LabPlan& plan);

private:
    TemporaryFolder folder_;
    ChildProcess process_;
};

} // namespace NetworkTests
