/// net-snmp's agent, as a child process on a loopback port.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

/// Runs with `configuration` and nothing of the system's, in a folder of its own, which goes with it.
class Snmpd {
public:
    /// Returns when it answers. Throws `std::runtime_error` with its log when it does not start.
    explicit Snmpd(const std::string& configuration);
    ~Snmpd();
    Snmpd(const Snmpd&) = delete;
    Snmpd& operator=(const Snmpd&) = delete;

    /// Ends it and starts it again, with the same port and engine. Throws as the constructor does.
    void restart();

    /// As `restart`, but with another engine.
    void replace();

    std::uint16_t port() const { return port_; }

private:
    bool start();
    void startAgain();
    bool answers();
    void stop();
    std::string log() const;

    std::filesystem::path folder_;
    int process_ = -1;
    std::uint16_t port_ = 0;
};
