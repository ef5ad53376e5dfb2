/// The project's own simulated devices.
#pragma once

#include "tests/network/harness/Program.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace NetworkTests {

/// A device of the lab's default network.
struct LabDevice {
    std::string address;
    std::string profile;
    Document printer; ///< the record that a sweep must give; null for a device that is no printer
};

/// Whether devices of one profile get physical addresses and serial numbers of their own, or are as their profile says.
enum class Individuality { byAddress, verbatim };

/// A running printer-lab with its default devices on a network of 127.0.0.0/8. All other addresses are silent.
class Lab {
public:
    /// `network`: such as 127.1.2.0/24. Returns when the lab is ready; throws `std::runtime_error` when it is not.
    Lab(const std::string& network, std::uint16_t port);

    /// What the program says about the devices of its default network, placed in `network`.
    static std::vector<LabDevice> list(const std::string& network, Individuality individuality);

private:
    ChildProcess process_;
};

} // namespace NetworkTests
