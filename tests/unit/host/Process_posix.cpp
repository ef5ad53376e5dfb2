#include "tests/unit/host/Process.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Host {

namespace {

constexpr int Patience = 60000; // milliseconds

struct Pipe {
    int read = -1;
    int write = -1;
};

Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

Pipe makeTerminal()
{
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 60;
    Pipe terminal;
    if (openpty(&terminal.read, &terminal.write, nullptr, nullptr, &size) != 0)
        throw std::runtime_error("no terminal");
    fcntl(terminal.read, F_SETFD, FD_CLOEXEC);
    fcntl(terminal.write, F_SETFD, FD_CLOEXEC);
    return terminal;
}

void closeOnce(int& descriptor)
{
    if (descriptor >= 0)
        close(std::exchange(descriptor, -1));
}

std::vector<std::string> environmentWith(const std::vector<std::string>& changes)
{
    std::vector<std::string> all = changes;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const std::string_view name = text.substr(0, text.find('=') + 1);
        bool replaced = name.starts_with("PRINTER_DISCOVERY_");
        for (const std::string& change : changes)
            replaced = replaced || change.starts_with(name);
        if (!replaced)
            all.emplace_back(text);
    }
    return all;
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

/// True while there may be more.
bool readInto(int& descriptor, std::string& text)
{
    std::array<char, 65536> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || errno != EINTR) // a terminal that nobody holds any more gives EIO
        closeOnce(descriptor);
    return descriptor >= 0;
}

} // namespace

std::string underTest(const std::string& built)
{
    const char* const folder = std::getenv("PRINTER_DISCOVERY_PROGRAMS");
    return folder == nullptr ? built
                             : (std::filesystem::path(folder) / std::filesystem::path(built).filename()).string();
}

Process::Process(std::vector<std::string> command, const Options& options)
{
    std::vector<std::string> environment = environmentWith(options.environment);
    const std::vector<char*> arguments = pointers(command);
    const std::vector<char*> variables = pointers(environment);
    Pipe in = makePipe();
    Pipe out = options.outputTerminal ? makeTerminal() : makePipe();
    Pipe error = options.terminal ? makeTerminal() : makePipe();
    if (!options.outputFile.empty()) {
        closeOnce(out.write);
        out.write = open(options.outputFile.c_str(), O_WRONLY | O_CLOEXEC);
    }
    pid_ = fork();
    if (pid_ == 0) {
        dup2(in.read, STDIN_FILENO);
        dup2(out.write, STDOUT_FILENO);
        dup2(error.write, STDERR_FILENO);
        execve(arguments[0], arguments.data(), variables.data());
        _exit(127);
    }
    closeOnce(in.read);
    closeOnce(out.write);
    closeOnce(error.write);
    input_ = in.write;
    outputPipe_ = out.read;
    errorPipe_ = error.read;
    if (pid_ < 0)
        throw std::runtime_error("no process");
}

Process::~Process()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    closeOnce(input_);
    closeOnce(outputPipe_);
    closeOnce(errorPipe_);
}

void Process::write(const std::string& text) const
{
    std::string_view left = text;
    while (!left.empty()) {
        const ssize_t count = ::write(input_, left.data(), left.size());
        if (count < 0)
            throw std::runtime_error("the program does not read");
        left.remove_prefix(static_cast<std::size_t>(count));
    }
}

void Process::closeOutput()
{
    closeOnce(outputPipe_);
}

void Process::closeInput()
{
    closeOnce(input_);
}

void Process::signal(int number) const
{
    kill(pid_, number);
}

std::string Process::shownCommandLine() const
{
    std::ifstream file("/proc/" + std::to_string(pid_) + "/cmdline", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Process::readSome()
{
    std::array<pollfd, 2> sources{pollfd{outputPipe_, POLLIN, 0}, pollfd{errorPipe_, POLLIN, 0}};
    if (poll(sources.data(), sources.size(), Patience) == 0)
        throw std::runtime_error("the program says nothing any more; it said: " + output_ + errors_);
    if (sources[0].revents != 0)
        readInto(outputPipe_, output_);
    if (sources[1].revents != 0)
        readInto(errorPipe_, errors_);
    return outputPipe_ >= 0 || errorPipe_ >= 0;
}

std::string Process::line()
{
    while (output_.find('\n') == std::string::npos)
        if (!readSome())
            throw std::runtime_error("the program ended; it said: " + output_ + errors_);
    const std::size_t end = output_.find('\n');
    const std::string line = output_.substr(0, end);
    output_.erase(0, end + 1);
    return line;
}

void Process::waitForError(const std::string& text)
{
    while (errors_.find(text) == std::string::npos)
        if (!readSome())
            throw std::runtime_error("the program ended; it said: " + errors_);
}

int Process::wait()
{
    closeInput();
    while (outputPipe_ >= 0 || errorPipe_ >= 0)
        readSome();
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace Host
