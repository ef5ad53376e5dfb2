/// Datagrams that are to be sent later.
///
/// Not synchronised: belongs to one thread.
#pragma once

#include "lab/LoopbackSocket.h"

#include <chrono>
#include <map>
#include <optional>

namespace Lab {

class Outbox {
public:
    using Clock = std::chrono::steady_clock;

    struct Item {
        Bytes datagram;
        LoopbackSocket::Ends ends;
        bool fromOtherPort = false;
    };

    /// Keeps `item` until `due`. Items that are due at the same time are sent in the order in which they came.
    void put(Clock::time_point due, Item item) { _items.emplace(due, std::move(item)); }

    /// When the first item is due; nothing when there is none.
    [[nodiscard]] std::optional<Clock::time_point> nextDue() const;

    /// Sends what is due at `now`. Returns how many datagrams the system took.
    std::uint64_t sendDue(LoopbackSocket& socket, Clock::time_point now);

private:
    std::multimap<Clock::time_point, Item> _items;
};

} // namespace Lab
