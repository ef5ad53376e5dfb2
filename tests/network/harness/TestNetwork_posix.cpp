#include "tests/network/harness/TestNetwork.h"

#include "tests/network/harness/Rights.h"

#include <stdexcept>

namespace NetworkTests {
namespace {

constexpr std::chrono::seconds commandBound(20);

/// `unshare` and its options: an ordinary user becomes root of a user namespace first.
std::vector<std::string> newNetwork()
{
    std::vector<std::string> words = {"unshare", "--net", "--mount"};
    if (!isRoot()) {
        words.insert(words.end(), {"--user", "--map-root-user"});
    }
    words.emplace_back("--");
    return words;
}

} // namespace

bool TestNetwork::permitted()
{
    static const bool result = [] {
        std::vector<std::string> words = newNetwork();
        words.emplace_back("true");
        return run({.words = words}, commandBound).status == 0;
    }();
    return result;
}

TestNetwork::TestNetwork(const Files& files)
{
    std::string script = "set -e; ip link set lo up; ";
    std::vector<std::string> arguments;
    for (const auto& [path, content] : files) {
        const std::string number = std::to_string(arguments.size() / 2);
        arguments.push_back(folder_.write(number, content));
        arguments.push_back(path);
        script += "mount --bind \"$1\" \"$2\"; shift 2; ";
    }
    std::vector<std::string> words = newNetwork();
    words.insert(words.end(), {"sh", "-c", script + "echo ready; read -r line", "sh"});
    words.insert(words.end(), arguments.begin(), arguments.end());
    holder_ = std::make_unique<ChildProcess>(Command{.words = words});
    if (holder_->readLine(commandBound) != "ready") {
        throw std::runtime_error("no network of its own for the test: " + holder_->errors());
    }
}

TestNetwork::~TestNetwork() = default;

std::vector<std::string> TestNetwork::enter() const
{
    std::vector<std::string> words = {"nsenter", "--target", std::to_string(holder_->pid()), "--net", "--mount"};
    if (!isRoot()) {
        words.insert(words.end(), {"--user", "--preserve-credentials"});
    }
    words.emplace_back("--");
    return words;
}

} // namespace NetworkTests
