#include "lab/Server.h"

namespace Lab {
namespace {

/// A loopback address that is not the one asked.
Address neighbourOf(Address address)
{
    return address ^ 2U;
}

Outbox::Item itemOf(Reply reply, LoopbackSocket::Ends ends)
{
    if (reply.from == Reply::From::OtherAddress)
        ends.asked = neighbourOf(ends.asked);
    return {std::move(reply.datagram), ends, reply.from == Reply::From::OtherPort};
}

} // namespace

Server::Server(const Farm& farm, const std::string& community, LoopbackSocket& socket)
    : _farm(farm), _socket(socket), _agent(community), _v3Agent(community)
{
    for (const Device& device : farm.devices())
        if (device.profile().isHostile())
            _tricks.emplace(device.address(), device.profile().makeTrick());
}

std::size_t Server::answer(ByteView request, const LoopbackSocket::Ends& ends, std::span<std::uint8_t> out)
{
    const Device* const device = _farm.at(ends.asked);
    if (device == nullptr)
        return 0;
    std::size_t size = _agent.answer(request, *device, out);
    if (size == 0)
        size = _v3Agent.answer(request, *device, out);
    if (size == 0 || !device->profile().isHostile())
        return size;
    play({request, out.first(size)}, ends);
    return 0;
}

void Server::play(const Occasion& occasion, const LoopbackSocket::Ends& ends)
{
    for (Reply& reply : _tricks.at(ends.asked)(occasion)) {
        const auto due = Clock::now() + reply.delay;
        _outbox.put(due, itemOf(std::move(reply), ends));
    }
}

/// How long to wait for requests: until something is to be sent, or to end.
std::optional<std::chrono::milliseconds> Server::patience(std::optional<Clock::time_point> idleEnd) const
{
    auto until = _outbox.nextDue();
    if (idleEnd && (!until || *idleEnd < *until))
        until = idleEnd;
    return until ? std::optional(std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now())) : std::nullopt;
}

LoopbackSocket::Counts Server::run(Lifetime& lifetime, std::optional<std::chrono::seconds> idleExit)
{
    const LoopbackSocket::Answer answering = [this](ByteView request, const LoopbackSocket::Ends& ends,
                                                    std::span<std::uint8_t> out) { return answer(request, ends, out); };
    const auto endOfIdling = [&] { return idleExit ? std::optional(Clock::now() + *idleExit) : std::nullopt; };
    LoopbackSocket::Counts counts;
    auto idleEnd = endOfIdling();
    for (;;) {
        const Lifetime::Event event = lifetime.wait(_socket, patience(idleEnd));
        if (event == Lifetime::Event::End || (event == Lifetime::Event::Silence && idleEnd && Clock::now() >= *idleEnd))
            return counts;
        if (event == Lifetime::Event::Requests) {
            const LoopbackSocket::Counts more = _socket.exchange(answering);
            counts.requests += more.requests;
            counts.answers += more.answers;
            idleEnd = endOfIdling();
        }
        counts.answers += _outbox.sendDue(_socket, Clock::now());
    }
}

} // namespace Lab
