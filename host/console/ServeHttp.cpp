#include "host/console/ServeHttp.h"

#include "host/Addresses.h"
#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/LocalNetworks.h"
#include "host/Platform.h"
#include "host/StoppingCalls.h"
#include "host/console/Console.h"
#include "host/console/HttpServer.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <ostream>
#include <string_view>
#include <system_error>

namespace Host {

namespace {

using namespace std::chrono_literals;

constexpr auto RunsEnd = 3s;
constexpr auto RequestsEnd = 1s;
constexpr std::uint32_t LoopbackNet = 127; // the first octet (RFC 1122, section 3.2.1.3)

[[noreturn]] void refuse(const std::string& address, const std::string& why)
{
    throw UsageError("--http: " + inQuotes(address) + ' ' + why);
}

/// An interface that only this machine reaches.
bool isLoopback(std::uint32_t address)
{
    return address >> 24U == LoopbackNet;
}

/// Names go into comparisons with a field of requests and nowhere else, but a mistake should not lie hidden.
void requireName(const std::string& name)
{
    if (name.empty() || name.find_first_of(" /@?#") != std::string::npos)
        throw UsageError("--host-name: " + inQuotes(name) + " is no name of a host; as in print.example.com");
}

} // namespace

HttpOptions readHttpOptions(const std::string& address, const std::optional<std::string>& tokenFile,
                            const std::vector<std::string>& names, std::string dataStore)
{
    HttpOptions options;
    const std::size_t colon = std::min(address.find(':'), address.size());
    options.address = address.substr(0, colon);
    const auto number = parseAddress(options.address);
    const std::string_view port = std::string_view(address).substr(std::min(colon + 1, address.size()));
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), options.port);
    if (!number || error != std::errc() || end != port.data() + port.size())
        refuse(address, "is not ADDRESS:PORT, as in 127.0.0.1:8631");
    if (tokenFile)
        options.token = readTokenFile(*tokenFile, "--token-file");
    if (!options.token && !isLoopback(*number))
        refuse(address, "is reached from other machines, so that clients have to know a token: --token-file FILE");
    for (const std::string& name : names)
        requireName(name);
    options.names = names;
    options.dataStore = std::move(dataStore);
    return options;
}

void serveHttp(const HttpOptions& options, IPluginCalls& plugin, IPace& pace, std::ostream& notes)
{
    auto bound = std::make_unique<HttpServer>(options.address, options.port);
    StoppingCalls calls(plugin);
    Console console(
        calls,
        {.guard = {.address = options.address, .port = bound->port(), .names = options.names, .token = options.token},
         .localNetworks = localNetworks,
         .dataStore = options.dataStore,
         .keptRuns = options.dataStore.empty() ? 0 : keptRuns(options.dataStore)});
    const std::unique_ptr<HttpServer> server = std::move(bound); // to end before the console, which its threads use
    server->start([&](const HttpRequest& head) { return console.turnAway(head); },
                  [&](const HttpRequest& request) { return console.answer(request); },
                  [&](int status) { return console.refuse(status); });
    notes << "listening on http://" << options.address << ':' << server->port() << '/' << std::endl;
    while (pace.sleep(std::chrono::hours(1))) {
    }
    const bool runsEnded = console.end(RunsEnd);
    if (!server->stop(RequestsEnd) || !runsEnded)
        leaveProcess(ExitCode::Done); // the ends of both would wait for probes in flight
}

} // namespace Host
