/// A `printer-lab` that a test runs, and commands to ask it with.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Lab::Testing {

/// What a finished program left.
struct Ended {
    /// The exit status; -1 when a signal ended it, or the test had to.
    int status = -1;
    std::string output;
    std::string errors;
};

/// Runs the program, which ends with this object at the latest. Not synchronised.
class RunningLab {
public:
    /// Starts it with these arguments; its standard input stays open.
    explicit RunningLab(const std::vector<std::string>& arguments);
    ~RunningLab();
    RunningLab(const RunningLab&) = delete;
    RunningLab& operator=(const RunningLab&) = delete;

    /// Waits until it has said "ready", at most 30 s. Returns the line before.
    std::string waitUntilReady();

    /// The port that it announced.
    [[nodiscard]] std::uint16_t port() const;

    void closeInput();
    void signal(int number) const;

    /// Waits for its end, at most 30 s.
    Ended waitForEnd();

private:
    bool readMore(int milliseconds);

    int _process = -1;
    int _input = -1;
    int _outputPipe = -1;
    std::string _errorFile;
    std::string _output;
};

/// Runs a shell command to its end. Errors stay on the test's standard error.
Ended shell(const std::string& command);

} // namespace Lab::Testing
