#include "lab/Arguments.h"
#include "lab/Error.h"
#include "lab/Identity.h"
#include "lab/Options.h"
#include "lab/Server.h"
#include "lab/TextLines.h"
#include "lab/hostile/HostileProfiles.h"

#include <exception>
#include <iostream>

namespace {

constexpr int failed = 1;
constexpr int usageError = 2;
constexpr std::uint32_t repeats = 2;

Lab::Farm buildFarm(const Lab::Options& options)
{
    Lab::ProfileLibrary library =
        options.profileFolder ? Lab::readProfiles(*options.profileFolder) : Lab::builtInProfiles();
    const auto individuality = options.verbatim ? Lab::Individuality::Verbatim : Lab::Individuality::ByAddress;
    if (options.planFile) {
        library.merge(Lab::hostileProfiles());
        return Lab::readPlan(*options.planFile, Lab::readFile(*options.planFile), library, individuality);
    }
    const auto devices = options.devices.value_or(static_cast<std::uint32_t>(library.size()) + repeats);
    return Lab::spreadFarm(Lab::Network::parse(options.network), library, {devices, options.printers, individuality});
}

void list(const Lab::Farm& farm)
{
    for (const Lab::Device& device : farm.devices())
        std::cout << Lab::identityLine(device) << '\n';
    std::cout.flush();
}

void announce(const Lab::Options& options, const Lab::Farm& farm, std::uint16_t port)
{
    std::cout << "printer-lab: " << (options.planFile ? "plan " + *options.planFile : options.network) << ", UDP port "
              << port << ", " << farm.devices().size() << " devices, " << farm.printers() << " of them printers\n"
              << "ready" << std::endl;
}

void serve(const Lab::Options& options, const Lab::Farm& farm)
{
    Lab::Lifetime lifetime(options.untilStandardInputCloses);
    Lab::LoopbackSocket socket(options.port);
    announce(options, farm, socket.port());
    const Lab::LoopbackSocket::Counts counts =
        Lab::Server(farm, options.community, socket).run(lifetime, options.idleExit);
    if (options.statistics)
        std::cerr << "printer-lab: " << counts.requests << " requests, " << counts.answers << " answers, "
                  << socket.dropped() << " dropped\n";
}

int listOrServe(const Lab::Options& options)
{
    const Lab::Farm farm = buildFarm(options);
    if (options.list)
        list(farm);
    else
        serve(options, farm);
    return 0;
}

int run(int argumentCount, char** arguments)
{
    try {
        const auto options = Lab::readOptions(Lab::programArguments(argumentCount, arguments));
        return std::holds_alternative<int>(options) ? std::get<int>(options)
                                                    : listOrServe(std::get<Lab::Options>(options));
    } catch (const Lab::Error& error) {
        std::cerr << "printer-lab: " << error.what() << '\n';
        return usageError;
    } catch (const std::exception& error) {
        std::cerr << "printer-lab: " << error.what() << '\n';
        return failed;
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return run(argumentCount, arguments);
}
