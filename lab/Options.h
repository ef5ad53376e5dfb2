/// The command line of `printer-lab`.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

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

/// The options given, or the exit status when there is nothing to do any more: 0 after a request for help, which has
/// then been printed, 2 after a usage error, which has been named on standard error.
std::variant<Options, int> readOptions(int argumentCount, const char* const* arguments);

} // namespace Lab
