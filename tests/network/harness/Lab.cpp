#include "tests/network/harness/Lab.h"

#include <sstream>
#include <stdexcept>

namespace NetworkTests {
namespace {

using Words = std::vector<std::string>;

Command labCommand(const Words& devices, const Words& more)
{
    Words words = {builtProgram("printer-lab")};
    words.insert(words.end(), devices.begin(), devices.end());
    words.insert(words.end(), more.begin(), more.end());
    return {.words = words};
}

Command serving(const Words& devices, std::uint16_t port)
{
    return labCommand(devices, {"--port", std::to_string(port), "--until-stdin-closes"});
}

Words planOption(const LabPlan& plan, const TemporaryFolder& folder)
{
    std::string lines;
    for (const auto& [address, profile] : plan) {
        lines += address + " " + profile + "\n";
    }
    return {"--plan", folder.write("plan", lines)};
}

LabDevice deviceOf(const Document& line)
{
    LabDevice device = {.address = line.at("ip"),
                        .profile = line.at("profile"),
                        .hostile = line.value("hostile", false),
                        .printer = nullptr};
    if (line.at("printer").get<bool>()) {
        device.printer = printerRecord(device.address, line.at("name"), line.at("mac"), line.at("sn"));
    }
    return device;
}

void waitUntilReady(ChildProcess& lab)
{
    auto line = lab.readLine(std::chrono::seconds(30));
    while (line && *line != "ready") {
        line = lab.readLine(std::chrono::seconds(30));
    }
    if (!line) {
        throw std::runtime_error("the lab does not become ready: " + lab.errors());
    }
}

std::vector<LabDevice> listed(const Command& command)
{
    const Finished result = run(command, std::chrono::seconds(30));
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

} // namespace

Lab::Lab(const std::string& network, std::uint16_t port) : process_(serving({"--network", network}, port))
{
    waitUntilReady(process_);
}

Lab::Lab(const LabPlan& plan, std::uint16_t port) : process_(serving(planOption(plan, folder_), port))
{
    waitUntilReady(process_);
}

std::vector<LabDevice> Lab::list(const std::string& network, Individuality individuality)
{
    Words options = {"--list"};
    if (individuality == Individuality::verbatim) {
        options.emplace_back("--verbatim");
    }
    return listed(labCommand({"--network", network}, options));
}

std::vector<LabDevice> Lab::list(const LabPlan& plan)
{
    const TemporaryFolder folder;
    return listed(labCommand(planOption(plan, folder), {"--list"}));
}

} // namespace NetworkTests
