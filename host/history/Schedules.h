/// Runs that are repeated at an interval, kept in the data store.
#pragma once

#include "Kep/Host/DataStore.h"
#include "Kep/Host/Mutex.h"
#include "host/PluginReply.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Host {

struct Schedule {
    using Time = std::chrono::system_clock::time_point;

    std::string id;    ///< letters, digits and hyphens; no other schedule's
    JsonValue request; ///< what to run, an object, as the client gave it, secrets included; never to be shown
    std::chrono::minutes every{};
    Time next;           ///< when it is due
    std::string lastRun; ///< id of the run that it started last; empty before the first
};

/// The file is its owner's alone, for what is in it holds credentials. Any thread; one at a time is in the file, others
/// wait. Every operation that changes something throws `GenericException` that names the file and the reason when the
/// file cannot be used, and has changed nothing then.
class Schedules {
public:
    using Time = Schedule::Time;

    static constexpr std::size_t Most = 100;
    static constexpr std::chrono::minutes Shortest{5};
    static constexpr std::chrono::minutes Longest{44640}; ///< 31 days

    /// Reads the schedules in the data store at `path` (UTF-8). What is not readable as a schedule counts as none.
    /// Throws as the other operations.
    explicit Schedules(std::string path);
    Schedules(const Schedules&) = delete;
    Schedules& operator=(const Schedules&) = delete;

    /// In the order in which they were added.
    std::vector<Schedule> list() const;

    /// Adds one that is due at `now` + `every` for the first time. Throws `UsageError` that says what is accepted when
    /// the interval is too short or too long, or there are as many schedules as there may be.
    Schedule add(std::string id, JsonValue request, std::chrono::minutes every, Time now);

    /// Whether there was such a schedule.
    bool remove(const std::string& id);

    /// Those that are due at `now`; each is from then on due at the first of its times after `now`, so what was missed
    /// while no program ran is run once.
    std::vector<Schedule> takeDue(Time now);

    /// The earliest time at which one is due; none when there is no schedule.
    std::optional<Time> nextDue() const;

    /// Notes the run that a schedule has started; nothing happens when the schedule is gone meanwhile.
    void noteRun(const std::string& id, const std::string& run);

private:
    using Kept = std::map<std::string, Schedule>; ///< by their place in the data store (Keys.h)

    void write(const std::string& place, const Schedule& schedule) KEP_REQUIRES(mutex_);
    Kept::iterator find(const std::string& id) KEP_REQUIRES(mutex_);

    mutable Kep::Mutex mutex_;
    Kep::Host::DataStore store_ KEP_GUARDED_BY(mutex_);
    Kept schedules_ KEP_GUARDED_BY(mutex_);
};

} // namespace Host
