/// The runs of the console.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/console/ConsoleRun.h"
#include "host/history/RunHistory.h"

#include <memory>
#include <string>
#include <vector>

namespace Host {

/// Any thread. A run that is not known, or is of the wrong kind, makes an `HttpError` with status 404.
class ConsoleRuns {
public:
    using Run = std::shared_ptr<ConsoleRun>;
    using AnyRun = std::shared_ptr<const IRun>;

    static constexpr std::size_t MostRunning = 16;
    static constexpr std::size_t MostEnded = 100; ///< that are not kept; of more, the oldest are forgotten
    static constexpr std::uint64_t MostAddressesHeld = 4 * MostAddresses; ///< of all runs; the oldest give way

    /// `history` keeps runs that have ended and outlives this; null: none are kept.
    ConsoleRuns(IPluginCalls& plugin, OutcomeRouter& router, Metrics& metrics, RunHistory* history);

    /// Stops all runs and waits until they have.
    ~ConsoleRuns();
    ConsoleRuns(const ConsoleRuns&) = delete;
    ConsoleRuns& operator=(const ConsoleRuns&) = delete;

    /// Throws `HttpError` with status 429 when too many runs, or runs of too many addresses, are under way.
    Run start(RunRequest request);

    /// Those of this process, the newest first.
    std::vector<Run> list() const;

    /// Of all runs, the newest first.
    JsonValue summaries() const;

    /// A run under way or ended, kept ones included.
    AnyRun find(const std::string& id) const;

    /// The last finished run before the given one over the same addresses; null when there is none.
    AnyRun before(const std::string& id, const AddressRanges& ranges) const;

    /// Has a run stop and waits for that, at most until `deadline`; one that has ended is left as it is.
    void stop(const std::string& id, std::chrono::steady_clock::time_point deadline);

    /// Forgets a run, also in the data store. Throws `HttpError` with status 409 when it is under way.
    void forget(const std::string& id);

    /// Has all runs stop and waits for that, at most for `time`; none starts any more. Whether all have stopped.
    bool end(std::chrono::milliseconds time);

private:
    bool keep(const RunSummary& summary, const ConsoleRun& run);
    Run findOwn(const std::string& id) const;
    std::vector<JsonValue> keptSummaries() const;
    void makeRoom(std::uint64_t addresses) KEP_REQUIRES(mutex_);
    bool dropOldest() KEP_REQUIRES(mutex_);
    std::uint64_t addressesHeld() const KEP_REQUIRES(mutex_);

    RunHistory* const history_;
    const RunServices services_;
    mutable Kep::Mutex mutex_;
    std::vector<Run> runs_ KEP_GUARDED_BY(mutex_); // the oldest first
    bool ending_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace Host
