/// Room in the system for the many threads of a queue that sleep at once.
#pragma once

namespace Kep {

/// Prepares the process for some ten thousand sleeping threads, where the system has to be told: waking one would
/// otherwise look through all that sleep. Where it cannot be told, nothing changes. Any thread.
void makeRoomForSleepers() noexcept;

} // namespace Kep
