#include "lab/Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>
#include <utility>

namespace Lab {
namespace {

constexpr int usageError = 2;
constexpr std::uint32_t mostPlaces = std::uint32_t{254} << 16;

void describeFarm(CLI::App& app, Options& options)
{
    auto* network = app.add_option("--network", options.network, "Block of 127.0.0.0/8 that the devices stand in")
                        ->type_name("ADDRESS/LENGTH")
                        ->capture_default_str();
    auto* devices = app.add_option("--devices", options.devices,
                                   "How many devices to spread over the network; by default each profile once and the "
                                   "first two again")
                        ->type_name("NUMBER")
                        ->check(CLI::Range(std::uint32_t{1}, mostPlaces));
    auto* printers =
        app.add_option("--printers", options.printers, "How many of the devices are printers; by default as they come")
            ->type_name("NUMBER")
            ->check(CLI::Range(std::uint32_t{0}, mostPlaces))
            ->needs(devices);
    app.add_option("--plan", options.planFile, "File with a line ADDRESS PROFILE for each device")
        ->type_name("FILE")
        ->excludes(network)
        ->excludes(devices)
        ->excludes(printers);
    app.add_option("--profiles", options.profileFolder, "Folder of .snmprec files to use instead of the built-in ones")
        ->type_name("FOLDER");
    app.add_flag(
        "--verbatim", options.verbatim,
        "Answer exactly as the profiles say, without physical addresses and serial numbers of each device's own");
}

void describeRun(CLI::App& app, Options& options, std::optional<std::uint32_t>& idleSeconds)
{
    app.add_option("--port", options.port, "UDP port; 0 for a free one")
        ->type_name("NUMBER")
        ->check(CLI::Range(0, static_cast<int>(std::numeric_limits<std::uint16_t>::max())))
        ->capture_default_str();
    app.add_option("--community", options.community,
                   "Community that is answered, in version 3 the user; others meet silence")
        ->type_name("TEXT")
        ->capture_default_str();
    app.add_option("--idle-exit", idleSeconds, "End after this time without a request")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 1'000'000));
    app.add_flag("--until-stdin-closes", options.untilStandardInputCloses, "End when standard input does");
    app.add_flag("--stats", options.statistics, "Say on standard error at the end how many requests there were");
    app.add_flag("--list", options.list,
                 "Print each device and what a discovery should report of it as a line of "
                 "JSON, and end");
}

} // namespace

std::variant<Options, int> readOptions(std::vector<std::string> arguments)
{
    CLI::App app(
        "Answers as printers and other devices on loopback addresses, over SNMP version 1, 2c and 3 (noAuthNoPriv).",
        "printer-lab");
    Options options;
    std::optional<std::uint32_t> idleSeconds;
    describeFarm(app, options);
    describeRun(app, options, idleSeconds);
    std::reverse(arguments.begin(), arguments.end()); // the order in which the parser takes them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : usageError;
    }
    if (idleSeconds)
        options.idleExit = std::chrono::seconds(*idleSeconds);
    return options;
}

} // namespace Lab
