/// UDP sockets on loopback that take requests and never answer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Host {

/// Bound while the object lives.
class SilentAgent {
public:
    /// Binds the same free port on each of the addresses of 127.0.0.0/8. Throws `std::runtime_error`.
    explicit SilentAgent(const std::vector<std::string>& addresses);
    ~SilentAgent();
    SilentAgent(const SilentAgent&) = delete;
    SilentAgent& operator=(const SilentAgent&) = delete;

    std::string port() const { return std::to_string(port_); }

    /// Waits, at most a minute, until a request has come to the first address; whether it has.
    bool waitForRequest() const;

private:
    std::uint16_t port_ = 0;
    std::vector<int> sockets_;
};

/// A port of 127.0.0.0/8 that was free a moment ago.
std::string closedPort();

} // namespace Host
