/// A scripted UDP server on the loopback address.
#pragma once

#include "Kep/Mutex.h"
#include "tests/unit/kep/net/StatusReply.h"
#include "tests/unit/support/TestSocket.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

namespace Kep::Testing {

using Replies = std::vector<Bytes>;

/// Answers each datagram with those that the script gives for it and its number, from 0. The script runs on the
/// responder's thread.
class UdpResponder {
public:
    using Script = std::function<Replies(const Bytes& request, int number)>;

    explicit UdpResponder(Script script);
    ~UdpResponder();
    UdpResponder(const UdpResponder&) = delete;
    UdpResponder& operator=(const UdpResponder&) = delete;

    std::uint16_t port() const { return socket_.port(); }
    std::vector<Bytes> requests();

private:
    void serve();

    const Script script_;
    const TestSupport::TestSocket socket_;
    std::atomic<bool> ending_{false};
    Mutex mutex_;
    std::vector<Bytes> requests_ KEP_GUARDED_BY(mutex_);
    std::thread thread_;
};

/// A port of the loopback address that nobody listens on.
std::uint16_t closedPort();

} // namespace Kep::Testing
