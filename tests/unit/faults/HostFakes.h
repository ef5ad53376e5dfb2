/// The clock, the threads and the task queue's client of the plug-in, in place of the real ones: they work, and fail on
/// command.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Faults {

/// Moves the plug-in's clock, which stands still otherwise. Its sleeps are short.
void passTime(std::int64_t seconds);

/// Starts of threads for the task queue are refused until they are granted again.
void refuseThreads(bool refused);

/// Threads of the task queue that are alive.
std::size_t queueThreads();

/// The `nth` submission from now (from 1) throws `Kep::GenericException`, and nothing is queued; 0: none does.
void failSubmission(std::size_t nth);

} // namespace Faults
