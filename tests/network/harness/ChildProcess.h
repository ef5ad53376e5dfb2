/// Programs that a test starts, and ends before it ends.
#pragma once

#include "tests/network/harness/Descriptor.h"
#include "tests/network/harness/TemporaryFolder.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace NetworkTests {

class TestNetwork;

/// What to start. The environment is PATH, HOME (a folder of the process' own), LANG=C.UTF-8, the sanitizers' options
/// and `environment`; nothing else of the test's own environment reaches the program.
struct Command {
    std::vector<std::string> words; ///< program, looked up in PATH, and its arguments
    std::map<std::string, std::string> environment = {};
    const TestNetwork* network = nullptr; ///< the network to run in; null: the test's own
    bool asNobody = false;                ///< run as the user nobody, if the test runs as root
};

/// A running program: a process group of its own that is ended with the object (SIGTERM, then SIGKILL) or when the test
/// dies. What it prints goes to files; when the test has failed they are shown. Used by one thread.
class ChildProcess {
public:
    /// Throws `std::system_error` when the program cannot be started.
    explicit ChildProcess(const Command& command);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    int pid() const { return pid_; }

    /// Signals the whole group, as a terminal does.
    void signal(int number) const;

    /// Writes a line to the standard input. Throws `std::system_error` when nobody reads it.
    void writeLine(std::string_view line) const;
    void closeInput() { input_.reset(); }

    /// The next line of standard output without its end; nothing when `bound` passes or the program ends first.
    std::optional<std::string> readLine(std::chrono::milliseconds bound);

    /// The exit status, or 128 + the signal that ended it; nothing when `bound` passes first.
    std::optional<int> waitForExit(std::chrono::milliseconds bound);
    bool running();

    /// What standard output and standard error have received so far.
    std::string output() const;
    std::string errors() const;

private:
    void start(const Command& command, int input);
    void reap(bool wait);
    void end();
    void showIfTestFailed() const;

    TemporaryFolder folder_;
    std::string title_;
    Descriptor input_;
    int pid_ = -1;
    std::optional<int> status_;
    std::size_t lineStart_ = 0;
};

/// Runs a program to its end. Throws `std::runtime_error` when that takes longer than `bound`.
struct Finished {
    int status;
    std::string output;
    std::string errors;
};
Finished run(const Command& command, std::chrono::milliseconds bound);

} // namespace NetworkTests
