/// Times of day as texts, all in UTC.
#pragma once

#include <chrono>
#include <string>

namespace Host {

/// ISO 8601 with seconds: "2026-11-21T09:30:00Z".
std::string isoTime(std::chrono::system_clock::time_point time);

/// As HTTP has it (RFC 9110, section 5.6.7): "Sat, 21 Nov 2026 09:30:00 GMT".
std::string httpDate(std::chrono::system_clock::time_point time);

} // namespace Host
