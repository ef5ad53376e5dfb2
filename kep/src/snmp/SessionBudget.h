/// How much a session may walk, so that an agent without end does not hold its caller for ever.
#pragma once

#include <chrono>
#include <cstddef>

namespace Kep::Snmp {

/// A number of get-next requests and a time for them. Used by one thread at a time; knows no clock.
class SessionBudget {
public:
    using Duration = std::chrono::steady_clock::duration;
    static constexpr std::size_t requests = 4096;
    static constexpr std::chrono::seconds time{60};

    /// Counts one request. Throws `Exception` when none, or no time, is left.
    void charge();

    /// Takes the time that a request took.
    void spend(Duration duration) noexcept { spent_ += duration; }

    /// What is left of the time.
    Duration left() const noexcept { return time - spent_; }

private:
    std::size_t charged_ = 0;
    Duration spent_{};
};

} // namespace Kep::Snmp
