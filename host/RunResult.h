/// What a discovery run brought.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Host {

/// One printer, with the texts as the plug-in gave them (UTF-8; any may be empty).
struct Printer {
    std::string hostname;
    std::string ip;
    std::vector<std::string> mac;
    std::string name;
    std::string sn;
    bool operator==(const Printer&) const = default;
};

constexpr int StateFinished = 1; ///< no work of the run is pending

/// Of several runs with different credentials: their sums, and each printer once.
struct RunResult {
    std::uint64_t step = 0;    ///< addresses probed
    std::uint64_t total = 0;   ///< addresses to probe
    int state = StateFinished; ///< as the plug-in last reported it
    std::vector<Printer> printers;
    bool interrupted = false;
};

} // namespace Host
