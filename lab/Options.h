/// The command line of `printer-lab`.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Lab {

struct Options {
    std::uint16_t port = 1161;
    std::string network = "127.77.0.0/24";
    std::string community = "public";
    std::optional<std::string> profileFolder;
    std::optional<std::string> planFile;
    std::optional<std::uint32_t> devices;
    std::optional<std::uint32_t> printers;
    std::optional<std::chrono::seconds> idleExit;
    bool verbatim = false;
    bool list = false;
    bool untilStandardInputCloses = false;
    bool statistics = false;
};

/// The options in `arguments`, which follow the program's name, or the exit status when there is nothing to do any
/// more: 0 after a request for help, which has then been printed, 2 after a usage error, which has been named on
/// standard error.
std::variant<Options, int> readOptions(std::vector<std::string> arguments);

} // namespace Lab
