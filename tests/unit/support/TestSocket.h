/// UDP over IPv4 for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace TestSupport {

/// An address, its first octet in the most significant byte, and a port.
struct Place {
    std::uint32_t address = 0x7F000001;
    std::uint16_t port = 0;
};

/// A socket bound while the object lives. Failures throw `std::system_error`.
class TestSocket {
public:
    /// Port 0 takes a free one.
    explicit TestSocket(Place place = {});
    ~TestSocket();
    TestSocket(const TestSocket&) = delete;
    TestSocket& operator=(const TestSocket&) = delete;

    std::uint16_t port() const;

    /// Whether there is something to receive, now or before the time has passed.
    bool waitReadable(int milliseconds) const;

    /// The next datagram, and where it came from.
    std::string receive(Place& sender) const;

    void send(std::string_view datagram, Place receiver) const;

private:
    std::intptr_t handle_;
};

/// Whether nobody has the UDP port, on any address.
bool isFree(std::uint16_t port);

/// A UDP port that nobody listens on, and that the system hands to nobody.
std::uint16_t unusedPort();

} // namespace TestSupport
