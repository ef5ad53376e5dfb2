/// Runs that the console repeats.
#pragma once

#include "host/console/ConsoleRuns.h"
#include "host/console/TargetTexts.h"
#include "host/history/Scheduler.h"
#include "host/history/Schedules.h"

#include <string>

namespace Host {

/// Any thread. Documents are as docs/http.md has them.
class ConsoleSchedules {
public:
    /// Keeps schedules in the data store at `path` and starts their runs in `runs`, which outlives this. Throws
    /// `GenericException` when the file cannot be used.
    ConsoleSchedules(const std::string& path, ConsoleRuns& runs, LocalNetworks localNetworks);

    JsonValue list() const;

    /// Adds the schedule that the body of a request describes and gives its document. Throws `HttpError`.
    JsonValue add(const std::string& body);

    /// Throws `HttpError` with status 404.
    void remove(const std::string& id);

private:
    std::string start(const Schedule& schedule);

    ConsoleRuns& runs_;
    const LocalNetworks localNetworks_;
    Schedules schedules_;
    Scheduler scheduler_; ///< the last member: its thread uses the others
};

} // namespace Host
