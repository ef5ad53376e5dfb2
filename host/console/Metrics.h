/// Counts of what the console does, for a monitoring system that fetches them.
#pragma once

#include "host/RunOutcomes.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace Host {

enum class RunState;

/// What is so at the moment, beside the counts.
struct MetricsNow {
    std::uint64_t runsRunning = 0;
    std::uint64_t runsStopping = 0;
    std::uint64_t tasksQueued = 0;
    std::uint64_t tasksRunning = 0;
};

/// Any thread.
class Metrics {
public:
    void addProbed(std::uint64_t addresses) { probed_ += addresses; }
    void addPrinters(std::uint64_t printers) { printers_ += printers; }
    void addEnded(RunState state);
    void addOutcomes(const OutcomeCounts& counts);
    void addResponse(int status);

    /// All of it in the Prometheus text format, version 0.0.4.
    std::string text(const MetricsNow& now) const;

private:
    using Count = std::atomic<std::uint64_t>;

    const std::chrono::system_clock::time_point start_ = std::chrono::system_clock::now();
    Count probed_{0};
    Count printers_{0};
    Count finished_{0};
    Count stopped_{0};
    Count failed_{0};
    std::array<Count, AddressOutcomes> outcomes_{};
    std::array<Count, 6> responses_{}; ///< by the first digit of the status
};

} // namespace Host
