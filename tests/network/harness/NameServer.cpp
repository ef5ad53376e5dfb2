#include "tests/network/harness/NameServer.h"

#include "tests/network/harness/Program.h"

#include <sstream>
#include <stdexcept>

namespace NetworkTests {
namespace {

Command command(const TestNetwork& network, const std::string& address, const std::map<std::string, std::string>& names)
{
    std::vector<std::string> words = {builtProgram("tests/scripted-name-server"), address};
    for (const auto& [host, name] : names) {
        words.push_back(host);
        words.back() += '=';
        words.back() += name;
    }
    return {.words = words, .network = &network};
}

} // namespace

NameServer::NameServer(const TestNetwork& network, const std::string& address,
                       const std::map<std::string, std::string>& names)
    : process_(command(network, address, names))
{
    if (process_.readLine(std::chrono::seconds(20)) != "listening") {
        throw std::runtime_error("the name server does not listen: " + process_.errors());
    }
}

std::vector<std::string> NameServer::asked() const
{
    std::vector<std::string> addresses;
    std::istringstream lines(process_.output());
    for (std::string line; std::getline(lines, line);) {
        if (line != "listening") {
            addresses.push_back(line);
        }
    }
    return addresses;
}

} // namespace NetworkTests
