#include "tests/network/harness/SnmpTools.h"

#include "tests/network/harness/WaitFor.h"

#include <stdexcept>

namespace NetworkTests {
namespace {

constexpr std::chrono::seconds toolBound(30);
constexpr char systemDescription[] = ".1.3.6.1.2.1.1.1.0";

Finished snmpget(const Endpoint& agent, const SnmpProfile& profile, const std::string& oid,
                 const std::vector<std::string>& patience, const TestNetwork* network)
{
    std::vector<std::string> words = {"snmpget", "-On"};
    const std::vector<std::string> options = profile.options();
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), patience.begin(), patience.end());
    words.push_back(agent.text());
    words.push_back(oid);
    return run({.words = words, .environment = {{"MIBS", ""}}, .network = network}, toolBound);
}

} // namespace

bool answers(const Endpoint& agent, const SnmpProfile& profile, const TestNetwork* network, const std::string& seconds)
{
    // An error status is an answer too; only silence, reports and closed ports are none.
    const Finished result = snmpget(agent, profile, systemDescription, {"-r", "0", "-t", seconds}, network);
    return result.status == 0 || result.errors.find("noSuchName") != std::string::npos;
}

std::string getWithTool(const Endpoint& agent, const SnmpProfile& profile, const std::string& oid)
{
    const Finished result = snmpget(agent, profile, oid, {"-r", "2", "-t", "5"}, nullptr);
    const std::string start = oid + " = ";
    if (result.status != 0 || !result.output.starts_with(start)) {
        throw std::runtime_error("snmpget: " + result.output + result.errors);
    }
    return result.output.substr(start.size(), result.output.find_last_not_of(" \n") + 1 - start.size());
}

void waitUntilAnswers(ChildProcess& program, const Endpoint& agent, const SnmpProfile& profile,
                      const TestNetwork* network)
{
    // Asked too early, the tool waits for its whole time-out, so that is short.
    const auto answered = [&] { return answers(agent, profile, network, "0.1"); };
    const bool ready = waitFor([&] { return !program.running() || answered(); }, toolBound) && program.running();
    if (!ready) {
        throw std::runtime_error("the agent at " + agent.text() + " does not answer: " + program.output() +
                                 program.errors());
    }
}

} // namespace NetworkTests
