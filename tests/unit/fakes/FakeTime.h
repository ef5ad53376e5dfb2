/// A clock that stands still until it is set, in place of the plug-in's own.
///
/// Sleeps return at once; they are entered in the `Journal` as "sleep 200 ms", "sleep 1000 ms" and "sleep 2 s".
#pragma once

#include <cstdint>

namespace Fakes {

/// Any thread.
class FakeTime {
public:
    /// Sets the clock to a time that is not 0.
    FakeTime();

    /// Ticks of 100 ns.
    void set(std::int64_t ticks);
    void advance(std::int64_t ticks);
    std::int64_t now() const;
};

} // namespace Fakes
