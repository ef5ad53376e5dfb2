/// The program's commands. Each returns the exit status and throws `UsageError` or `Failure`.
#pragma once

#include "host/Arguments.h"
#include "host/DiscoverOptions.h"
#include "host/ExitCode.h"

#include <iosfwd>

namespace Host {

/// Sweeps, shows progress on standard error if that is a terminal, and prints the result; a dry run prints what it
/// would sweep. When the user interrupts,
/// the process leaves at once after the result, without waiting for probes in flight.
ExitCode discover(const DiscoverArguments& arguments, const DiscoverOptions& options);

/// Answers JSON-RPC messages on standard streams until the input ends or the user interrupts.
ExitCode serve(const ServeArguments& arguments);

/// Shows and changes the settings of the data store; what it shows goes to `output` in `style`.
ExitCode settings(const SettingsArguments& arguments, std::ostream& output, const TextStyle& style);

} // namespace Host
