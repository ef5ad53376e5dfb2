/// What a hostile device does instead of answering as it should.
#pragma once

#include "lab/Oid.h"

#include <chrono>
#include <functional>

namespace Lab {

/// A request to a device, and what an honest device would answer.
struct Occasion {
    ByteView request;
    ByteView honest;
};

/// A datagram to whoever has asked.
struct Reply {
    enum class From { AddressAsked, OtherAddress, OtherPort };

    Bytes datagram;
    std::chrono::milliseconds delay{0};
    From from = From::AddressAsked;
};

/// What the device sends on an occasion, in this order where delays do not change it. A trick may remember earlier
/// occasions, so each device has one of its own, and it belongs to one thread.
using Trick = std::function<std::vector<Reply>(const Occasion&)>;
using TrickMaker = Trick (*)();

/// A trick that devices may be told to play, by its name.
struct NamedTrick {
    const char* name;
    TrickMaker make;
};

} // namespace Lab
