#include "lab/Outbox.h"

namespace Lab {
namespace {

bool sendItem(LoopbackSocket& socket, const Outbox::Item& item)
{
    return item.fromOtherPort ? LoopbackSocket::sendFromOtherPort(item.datagram, item.ends)
                              : socket.send(item.datagram, item.ends);
}

} // namespace

std::optional<Outbox::Clock::time_point> Outbox::nextDue() const
{
    return _items.empty() ? std::nullopt : std::optional(_items.begin()->first);
}

std::uint64_t Outbox::sendDue(LoopbackSocket& socket, Clock::time_point now)
{
    std::uint64_t sent = 0;
    while (!_items.empty() && _items.begin()->first <= now) {
        sent += sendItem(socket, _items.begin()->second) ? 1U : 0U;
        _items.erase(_items.begin());
    }
    return sent;
}

} // namespace Lab
