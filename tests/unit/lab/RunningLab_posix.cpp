#include "tests/unit/lab/RunningLab.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Lab::Testing {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(30);

std::string contents(const std::string& file)
{
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// In the child: does not return.
void becomeLab(const std::vector<std::string>& arguments, int input, int output, int errors)
{
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    std::vector<char*> words{const_cast<char*>(PRINTER_LAB)};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    ::execv(PRINTER_LAB, words.data());
    ::_exit(127);
}

} // namespace

RunningLab::RunningLab(const std::vector<std::string>& arguments)
{
    std::string pattern = ::testing::TempDir() + "lab-errors-XXXXXX";
    const int errors = ::mkostemp(pattern.data(), O_CLOEXEC);
    _errorFile = pattern;
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (errors < 0 || ::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    _process = ::fork();
    if (_process == 0)
        becomeLab(arguments, in[0], out[1], errors);
    ::close(in[0]);
    ::close(out[1]);
    ::close(errors);
    _input = in[1];
    _outputPipe = out[0];
}

RunningLab::~RunningLab()
{
    if (_process > 0) {
        ::kill(_process, SIGKILL);
        ::waitpid(_process, nullptr, 0);
    }
    closeInput();
    ::close(_outputPipe);
    std::filesystem::remove(_errorFile);
}

bool RunningLab::readMore(int milliseconds)
{
    pollfd watched{_outputPipe, POLLIN, 0};
    if (::poll(&watched, 1, milliseconds) <= 0)
        return true;
    std::array<char, 4096> part{};
    const ssize_t count = ::read(_outputPipe, part.data(), part.size());
    if (count > 0)
        _output.append(part.data(), static_cast<std::size_t>(count));
    return count > 0;
}

std::string RunningLab::waitUntilReady()
{
    const auto deadline = Clock::now() + patience;
    while (!_output.ends_with("\nready\n") && Clock::now() < deadline && readMore(100)) {
    }
    if (!_output.ends_with("\nready\n"))
        throw std::runtime_error("the lab is not ready: " + _output + contents(_errorFile));
    return _output.substr(0, _output.find('\n'));
}

std::uint16_t RunningLab::port() const
{
    const std::string before = "UDP port ";
    return static_cast<std::uint16_t>(std::stoi(_output.substr(_output.find(before) + before.size())));
}

void RunningLab::closeInput()
{
    if (_input >= 0)
        ::close(_input);
    _input = -1;
}

void RunningLab::signal(int number) const
{
    ::kill(_process, number);
}

Ended RunningLab::waitForEnd()
{
    const auto deadline = Clock::now() + patience;
    while (Clock::now() < deadline && readMore(100)) {
    }
    if (Clock::now() >= deadline)
        return {-1, _output, "still running"};
    int status = 0;
    ::waitpid(_process, &status, 0);
    _process = -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, _output, contents(_errorFile)};
}

Ended shell(const std::string& command)
{
    Ended ended;
    std::FILE* pipe = ::popen(command.c_str(), "r");
    std::array<char, 4096> part{};
    for (std::size_t count = 0; (count = std::fread(part.data(), 1, part.size(), pipe)) > 0;)
        ended.output.append(part.data(), count);
    const int status = ::pclose(pipe);
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return ended;
}

} // namespace Lab::Testing
