#include "entry/System.h"

#include "entry/Driver.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <thread>

namespace System {
namespace {

[[noreturn]] void fail(const char* what, int error = errno)
{
    throw std::system_error(error, std::generic_category(), what);
}

class Descriptor {
public:
    explicit Descriptor(int value) : value_(value) {}
    ~Descriptor() { close(value_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return value_; }

private:
    int value_;
};

pid_t spawn(const std::vector<std::string>& command, int output)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (output >= 0)
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        fail(arguments[0], error);
    return child;
}

std::optional<int> exitStatus(pid_t child, int seconds)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() >= deadline) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

std::string readAll(int descriptor)
{
    std::string text;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = read(descriptor, buffer.data(), buffer.size())) > 0)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    return text;
}

sockaddr_in addressOf(int host, std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(0x7F140000U + static_cast<std::uint32_t>(host));
    return address;
}

// A socket bound to 127.20.0.`host`; port 0 takes a free one, which `port` becomes.
int bindSocket(int host, std::uint16_t& port)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        fail("socket");
    sockaddr_in address = addressOf(host, port);
    socklen_t length = sizeof address;
    if (bind(descriptor, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        const int error = errno;
        close(descriptor);
        fail("bind", error);
    }
    port = ntohs(address.sin_port);
    return descriptor;
}

} // namespace

std::optional<int> run(const std::vector<std::string>& command, int seconds, std::string* output)
{
    if (output == nullptr)
        return exitStatus(spawn(command, -1), seconds);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("pipe2");
    const Descriptor reading(ends[0]);
    pid_t child = 0;
    {
        const Descriptor writing(ends[1]);
        child = spawn(command, writing.get());
    }
    *output = readAll(reading.get());
    return exitStatus(child, seconds);
}

TemporaryFolder::TemporaryFolder() : path_((std::filesystem::temp_directory_path() / "pd-entry-XXXXXX").string())
{
    if (mkdtemp(path_.data()) == nullptr)
        fail("mkdtemp");
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

SilentHosts::SilentHosts(int hosts)
{
    for (int host = 1; host <= hosts; ++host)
        sockets_.push_back(bindSocket(host, port_));
}

SilentHosts::~SilentHosts()
{
    for (const std::intptr_t descriptor : sockets_)
        close(static_cast<int>(descriptor));
}

std::string SilentHosts::receive() const
{
    const auto descriptor = static_cast<int>(sockets_.at(0));
    pollfd waiting{descriptor, POLLIN, 0};
    if (poll(&waiting, 1, 10'000) != 1)
        return {};
    std::array<char, 2048> buffer{};
    const ssize_t count = recv(descriptor, buffer.data(), buffer.size(), 0);
    return count < 0 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(count));
}

std::uint16_t closedPort()
{
    return SilentHosts(1).port();
}

std::vector<std::string> exportedNames(const std::string& library)
{
    std::string listing;
    if (run({PD_NM, "-D", "--defined-only", "--format=posix", library}, 60, &listing) != 0)
        fail(PD_NM, EIO);
    std::istringstream lines(listing);
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
        names.push_back(line.substr(0, line.find(' ')));
    return names;
}

bool isGone(const std::string& library)
{
    return driverIsLoaded(library.c_str()) == 0;
}

} // namespace System
