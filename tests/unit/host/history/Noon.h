#pragma once

#include <chrono>

namespace Host {

/// The time at which tests of runs and schedules begin, in UTC.
constexpr std::chrono::system_clock::time_point noon{std::chrono::seconds{1'795'262'400}};

} // namespace Host
