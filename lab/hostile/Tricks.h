/// The tricks, by what they spoil. Each list lives as long as the program.
#pragma once

#include "lab/hostile/Trick.h"

#include <span>

namespace Lab {

/// Messages that are no messages, or not the answer: what a decoder has to survive.
std::span<const NamedTrick> messageTricks();

/// Device tables without an end, and others that no walk gets through.
std::span<const NamedTrick> tableTricks();

/// Right answers that come from elsewhere, too late, too often or not at all.
std::span<const NamedTrick> deliveryTricks();

/// What only version 3 has: reports, engines and their clocks. Versions 1 and 2c are answered honestly.
std::span<const NamedTrick> v3Tricks();

} // namespace Lab
