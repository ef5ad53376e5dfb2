/// One run of the console, under way or ended.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/RunOutcomes.h"
#include "host/RunResult.h"
#include "host/console/IRun.h"
#include "host/console/Metrics.h"
#include "host/console/RunCalls.h"
#include "host/console/RunPace.h"
#include "host/console/RunRequest.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Host {

enum class RunState { Running, Stopping, Stopped, Finished, Failed };

/// A run without its printers.
struct RunSummary {
    using Time = std::chrono::system_clock::time_point;

    std::string id;
    std::string name, targets, exclude;
    int port = 0;
    std::vector<std::string> credentials; ///< in words
    Time started;
    std::optional<Time> finished;
    RunState state = RunState::Running;
    std::string message; ///< why it failed, or advice; for people
    std::uint64_t step = 0, total = 0, found = 0;
    OutcomeCounts outcomes;
    bool kept = false;    ///< in the data store
    std::string schedule; ///< id of the one that started it, if one did
};

class ConsoleRun;

/// What runs share; it outlives them.
struct RunServices {
    IPluginCalls& plugin; ///< stops runs without holding up others (StoppingCalls.h)
    OutcomeRouter& router;
    Metrics& metrics;

    /// Told of a run that has ended, with the summary that it is about to get, on its thread; whether it is kept.
    std::function<bool(const RunSummary& summary, const ConsoleRun& run)> keep = {};
};

/// Follows its run on a thread of its own. Any thread may ask.
class ConsoleRun : public IRun, public IProgress {
public:
    /// Begins the run. Keeps the reference. Throws `std::system_error` when there is no thread to be had.
    ConsoleRun(std::string id, RunRequest request, const RunServices& services);

    /// Stops the run and waits until it has.
    ~ConsoleRun() override;
    ConsoleRun(const ConsoleRun&) = delete;
    ConsoleRun& operator=(const ConsoleRun&) = delete;

    const std::string& id() const { return id_; }
    bool running() const;
    RunState state() const;
    std::uint64_t addresses() const { return addresses_; }

    JsonValue summary() const override;
    PrinterSlice printers(std::size_t from, std::size_t most) const override;
    RunResult result() const override;
    const AddressRanges& ranges() const override { return ranges_; }
    std::vector<RunOutcomes::Entry> outcomes(std::uint32_t from, std::size_t most, const Wanted& wanted) const override;

    /// What the plug-in has left to do for it.
    Kep::Host::CallWork work() const;

    /// Has the run stop, if it is not over; returns at once.
    void stop();

    /// Waits until it is over, at most until `deadline`; whether it is.
    bool waitForEnd(std::chrono::steady_clock::time_point deadline) const;

    void show(const RunResult& soFar) override;

private:
    void run(const RunRequest& request);
    void end(RunState state, std::string message);
    RunSummary currentSummary() const;
    RunState follow(const RunRequest& request, std::string& message);
    void forgetInPlugin(const std::string& cookie);
    void takePrinters(const std::vector<Printer>& printers) KEP_REQUIRES(mutex_);

    const std::string id_;
    const AddressRanges ranges_;
    const std::uint64_t addresses_; ///< to probe in them
    const RunServices& services_;
    const std::shared_ptr<RunOutcomes> outcomes_;
    RunCalls calls_;
    RunPace pace_;

    mutable Kep::Mutex mutex_;
    mutable std::condition_variable ended_;
    RunSummary summary_ KEP_GUARDED_BY(mutex_);
    RunResult result_ KEP_GUARDED_BY(mutex_);
    std::vector<std::size_t> messages_ KEP_GUARDED_BY(mutex_); ///< places in the printers of `result_`

    std::jthread thread_; ///< the last member: it uses the others
};

} // namespace Host
