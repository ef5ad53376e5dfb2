/// A program that a test runs and talks to.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace Host {

/// The program to test: the one that was built, or its namesake in the folder that PRINTER_DISCOVERY_PROGRAMS names.
std::string underTest(const std::string& built);

/// Runs while the object lives; killed with it. Waits give up after a minute by throwing.
class Process {
public:
    struct Options {
        std::vector<std::string> environment; ///< NAME=VALUE, beside or in place of what the test has
        bool terminal = false;                ///< standard error is a terminal of 60 columns
        bool outputTerminal = false;          ///< standard output is one
        std::string outputFile;               ///< where standard output goes, if not to the test
    };

    Process(std::vector<std::string> command, const Options& options);
    explicit Process(std::vector<std::string> command) : Process(std::move(command), Options{}) {}
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void write(const std::string& text) const;
    void closeInput();
    void closeOutput();
    void signal(int number) const;

    /// The command line as other users of the system see it; arguments end with a NUL each.
    std::string shownCommandLine() const;

    /// The next line of standard output, without its end.
    std::string line();

    /// Reads until standard error holds `text`.
    void waitForError(const std::string& text);

    /// Reads to the end and gives the exit status; minus the signal's number when one ended it.
    int wait();

    const std::string& output() const { return output_; } ///< what `line` has not taken
    const std::string& errors() const { return errors_; }

private:
    bool readSome();

    pid_t pid_ = -1;
    int input_ = -1;
    int outputPipe_ = -1;
    int errorPipe_ = -1;
    std::string output_;
    std::string errors_;
};

} // namespace Host
