/// Runs that have ended, kept in the data store.
#pragma once

#include "Kep/Host/DataStore.h"
#include "Kep/Host/Mutex.h"
#include "host/PluginReply.h"
#include "host/RunOutcomes.h"
#include "host/RunResult.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/// A run that has ended, without a secret.
struct RunRecord {
    std::string id; ///< letters, digits and hyphens; no other run's
    std::chrono::system_clock::time_point ended;
    JsonValue summary; ///< an object, as clients get it; kept and given back as it is
    std::vector<Printer> printers;
    std::vector<RunOutcomes::Entry> outcomes; ///< by ascending address; those that are silent are not kept
};

/// How many runs the data store at `path` (UTF-8) says are to be kept: its setting "host.history.runs", by default 0.
/// Throws `GenericException` when the file cannot be used or the value is not accepted.
std::size_t keptRuns(const std::string& path);

/// Keeps the newest runs, by the time they ended, and drops older ones; a run is kept whole or not at all, whenever the
/// process ends. With 0 runs to keep it keeps none, and gives none back. Any number of processes may share the file;
/// each sees the others' runs from its next start on. Any thread; one at a time is in the file, others wait.
/// Every operation throws `GenericException` that names the file and the reason when the file cannot be used, and has
/// changed nothing then.
class RunHistory {
public:
    static constexpr std::size_t MostPrinters = 10'000;                    ///< kept of a run; further ones are left out
    static constexpr std::size_t MostBytes = std::size_t{4} * 1024 * 1024; ///< of texts of printers; the same
    static constexpr std::size_t MostOutcomes = 10'000;                    ///< the same

    /// Reads the summaries in the data store at `path` (UTF-8), and drops runs beyond `most`. What is not readable as a
    /// run counts as none.
    RunHistory(std::string path, std::size_t most);
    RunHistory(const RunHistory&) = delete;
    RunHistory& operator=(const RunHistory&) = delete;

    /// How many runs are kept at most.
    std::size_t most() const { return most_; }

    /// Those of all runs, newest first.
    std::vector<JsonValue> summaries() const;

    /// All of a run, read from the file; none when it is not kept.
    std::optional<RunRecord> find(const std::string& id) const;

    void add(const RunRecord& run);

    /// Whether there was such a run.
    bool remove(const std::string& id);

private:
    using Runs = std::map<std::string, JsonValue>; ///< summaries by their place in the data store (Keys.h)

    void load() KEP_REQUIRES(mutex_);
    void change(Kep::Host::DataStore::Changes changes, Runs runs) KEP_REQUIRES(mutex_);
    Runs::const_iterator placedAt(const std::string& id) const KEP_REQUIRES(mutex_);

    const std::size_t most_;

    mutable Kep::Mutex mutex_;
    Kep::Host::DataStore store_ KEP_GUARDED_BY(mutex_);
    Runs runs_ KEP_GUARDED_BY(mutex_);
};

} // namespace Host
