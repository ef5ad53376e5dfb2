/// The plug-in's only access to clocks and sleeps, so that tests can put their own in its place at link time.
///
/// Any thread. Nothing here takes a lock, and nothing is thrown.
#pragma once

#include <cstdint>

namespace PrinterDiscoveryPlugin::Time {

/// The system time in ticks of 100 ns; the epoch is the platform's.
std::int64_t systemTicks() noexcept;

/// Sleeps 200 ms on the high-resolution clock: between two looks at a run's pending tasks during its destruction.
void sleepWhileDraining() noexcept;

/// Sleeps 1000 ms: between two attempts to read one value.
void sleepBeforeRetry() noexcept;

/// Sleeps until the steady clock has advanced by 2,000,000,000 ns; the deadline saturates at the largest signed
/// 64-bit value. Between two looks of a blocking start at its run.
void sleepBetweenPolls() noexcept;

} // namespace PrinterDiscoveryPlugin::Time
