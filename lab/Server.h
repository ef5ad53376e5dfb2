/// Answers for the devices of a farm: honestly, or as a hostile device's trick has it.
///
/// Belongs to one thread.
#pragma once

#include "lab/Farm.h"
#include "lab/Lifetime.h"
#include "lab/Outbox.h"
#include "lab/V3Agent.h"

namespace Lab {

class Server {
public:
    /// Answers requests of `community`, which in version 3 is the name of the user. `farm` and `socket` outlive the
    /// server.
    Server(const Farm& farm, const std::string& community, LoopbackSocket& socket);

    /// Serves until the lifetime ends, or until there has been no request for `idleExit`. Returns how many requests
    /// and answers there were. Throws `std::system_error`.
    LoopbackSocket::Counts run(Lifetime& lifetime, std::optional<std::chrono::seconds> idleExit);

private:
    using Clock = Outbox::Clock;

    std::size_t answer(ByteView request, const LoopbackSocket::Ends& ends, std::span<std::uint8_t> out);
    void play(const Occasion& occasion, const LoopbackSocket::Ends& ends);
    [[nodiscard]] std::optional<std::chrono::milliseconds> patience(std::optional<Clock::time_point> idleEnd) const;

    const Farm& _farm;
    LoopbackSocket& _socket;
    Agent _agent;
    V3Agent _v3Agent;
    std::map<Address, Trick> _tricks;
    Outbox _outbox;
};

} // namespace Lab
