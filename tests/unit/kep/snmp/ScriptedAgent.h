/// An agent on loopback that answers as its script says.
#pragma once

#include "Ber.h"
#include "Kep/Mutex.h"
#include "tests/unit/support/TestSocket.h"

#include <atomic>
#include <functional>
#include <thread>

using TestSupport::Place;
using TestSupport::TestSocket;

/// A datagram, and where it comes from.
struct Answer {
    enum class From { agent, otherPort, otherAddress };

    Answer(Ber::Bytes answer, From origin = From::agent) : bytes(std::move(answer)), from(origin) {}

    Ber::Bytes bytes;
    From from;
};

/// Answers from a thread of its own until it is destroyed.
class ScriptedAgent {
public:
    /// What to send for `request`, the `number`-th received (from 1), in order. Called on the agent's thread.
    using Script = std::function<std::vector<Answer>(const Ber::Bytes& request, std::size_t number)>;

    explicit ScriptedAgent(Script script);
    ~ScriptedAgent();
    ScriptedAgent(const ScriptedAgent&) = delete;
    ScriptedAgent& operator=(const ScriptedAgent&) = delete;

    std::uint16_t port() const { return socket_.port(); }
    std::vector<Ber::Bytes> requests() const;

private:
    void serve();
    std::size_t note(const Ber::Bytes& request);

    const Script script_;
    const TestSocket socket_;
    std::atomic<bool> stop_ = false;
    mutable Kep::Mutex mutex_;
    std::vector<Ber::Bytes> requests_ KEP_GUARDED_BY(mutex_);
    std::thread thread_;
};

/// A UDP port of 127.0.0.1 that takes everything and says nothing.
using SilentPort = TestSocket;

/// A UDP port of 127.0.0.1 that nobody listens on.
std::uint16_t closedPort();
