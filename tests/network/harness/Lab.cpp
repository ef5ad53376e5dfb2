#include "tests/network/harness/Lab.h"

#include <sstream>
#include <stdexcept>

namespace NetworkTests {
namespace {

Command labCommand(const std::string& network, std::vector<std::string> more)
{
    std::vector<std::string> words = {builtProgram("printer-lab"), "--network", network};
    words.insert(words.end(), more.begin(), more.end());
    return {.words = words};
}

LabDevice deviceOf(const Document& line)
{
    LabDevice device = {.address = line.at("ip"), .profile = line.at("profile"), .printer = nullptr};
    if (line.at("printer").get<bool>()) {
        device.printer = printerRecord(device.address, line.at("name"), line.at("mac"), line.at("sn"));
    }
    return device;
}

} // namespace

Lab::Lab(const std::string& network, std::uint16_t port)
    : process_(labCommand(network, {"--port", std::to_string(port), "--until-stdin-closes"}))
{
    auto line = process_.readLine(std::chrono::seconds(30));
    while (line && *line != "ready") {
        line = process_.readLine(std::chrono::seconds(30));
    }
    if (!line) {
        throw std::runtime_error("the lab does not become ready: " + process_.errors());
    }
}

std::vector<LabDevice> Lab::list(const std::string& network, Individuality individuality)
{
    std::vector<std::string> options = {"--list"};
    if (individuality == Individuality::verbatim) {
        options.emplace_back("--verbatim");
    }
    const Finished result = run(labCommand(network, options), std::chrono::seconds(30));
    if (result.status != 0) {
        throw std::runtime_error("printer-lab --list failed: " + result.errors);
    }
    std::vector<LabDevice> devices;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        devices.push_back(deviceOf(parseOutput(line)));
    }
    return devices;
}

} // namespace NetworkTests
