/// What the tests need of the operating system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace System {

/// Runs a program and waits for it. Its exit status; nothing when it had to be ended after `seconds` or ended by a
/// signal. What it wrote to standard output goes into `output`, if given.
std::optional<int> run(const std::vector<std::string>& command, int seconds, std::string* output = nullptr);

/// A new empty folder, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// One UDP port on the loopback addresses 127.20.0.1 to 127.20.0.`hosts`, where nobody answers.
class SilentHosts {
public:
    explicit SilentHosts(int hosts);
    ~SilentHosts();
    SilentHosts(const SilentHosts&) = delete;
    SilentHosts& operator=(const SilentHosts&) = delete;

    std::uint16_t port() const { return port_; }

    /// The next datagram that the first host received, within 10 s; empty when there is none.
    std::string receive() const;

private:
    std::vector<std::intptr_t> sockets_;
    std::uint16_t port_ = 0;
};

/// A UDP port of the loopback addresses that is closed.
std::uint16_t closedPort();

/// What a library exports, by name.
std::vector<std::string> exportedNames(const std::string& library);

/// Whether an unloaded library has left the process: at once, or where a run keeps it loaded, when that has ended.
bool isGone(const std::string& library);

} // namespace System
