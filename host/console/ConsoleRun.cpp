#include "host/console/ConsoleRun.h"

#include "host/DiscoverOptions.h"
#include "host/DiscoverRuns.h"
#include "host/DisplayText.h"
#include "host/OutcomeTexts.h"
#include "host/Service.h"
#include "host/console/RunDocuments.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Host {

namespace {

bool isOver(RunState state)
{
    return state != RunState::Running && state != RunState::Stopping;
}

/// Nobody else's cookie: the id is made by chance.
std::string cookieOf(const std::string& id, std::size_t number)
{
    return "console-" + id + '-' + std::to_string(number);
}

std::vector<RunStart> startsOf(const std::string& id, const RunRequest& request)
{
    DiscoverOptions options;
    options.ranges = request.ranges;
    std::vector<RunStart> starts;
    for (const JsonValue& profile : request.profiles) {
        const std::string cookie = cookieOf(id, starts.size() + 1);
        starts.push_back({startDocument(options, profile, cookie), cookie});
    }
    return starts;
}

RunSummary summaryOf(const std::string& id, const RunRequest& request)
{
    RunSummary summary;
    summary.id = id;
    summary.name = request.name;
    summary.targets = request.targets;
    summary.exclude = request.exclude;
    summary.port = request.port;
    summary.credentials = request.credentials;
    summary.schedule = request.schedule;
    summary.started = std::chrono::system_clock::now();
    summary.total = request.addresses * request.profiles.size();
    return summary;
}

} // namespace

ConsoleRun::ConsoleRun(std::string id, RunRequest request, const RunServices& services)
    : id_(std::move(id)), ranges_(request.ranges), addresses_(request.addresses), services_(services),
      outcomes_(std::make_shared<RunOutcomes>(ranges_)), calls_(services.plugin, services.router, outcomes_),
      summary_(summaryOf(id_, request))
{
    thread_ = std::jthread([this, request = std::move(request)] { run(request); });
}

ConsoleRun::~ConsoleRun()
{
    stop();
}

RunSummary ConsoleRun::currentSummary() const
{
    Kep::MutexLock lock(mutex_);
    RunSummary summary = summary_;
    summary.outcomes = outcomes_->counts();
    return summary;
}

JsonValue ConsoleRun::summary() const
{
    return summaryDocument(currentSummary());
}

RunState ConsoleRun::state() const
{
    Kep::MutexLock lock(mutex_);
    return summary_.state;
}

bool ConsoleRun::running() const
{
    return !isOver(state());
}

std::vector<RunOutcomes::Entry> ConsoleRun::outcomes(std::uint32_t from, std::size_t most, const Wanted& wanted) const
{
    return outcomes_->list(from, most, wanted);
}

PrinterSlice ConsoleRun::printers(std::size_t from, std::size_t most) const
{
    Kep::MutexLock lock(mutex_);
    PrinterSlice slice;
    slice.next = std::min(from, messages_.size());
    for (; slice.next < messages_.size() && slice.printers.size() < most; ++slice.next)
        slice.printers.push_back(result_.printers[messages_[slice.next]]);
    return slice;
}

RunResult ConsoleRun::result() const
{
    Kep::MutexLock lock(mutex_);
    return result_;
}

Kep::Host::CallWork ConsoleRun::work() const
{
    return calls_.work();
}

void ConsoleRun::stop()
{
    Kep::MutexLock lock(mutex_);
    if (summary_.state != RunState::Running)
        return;
    summary_.state = RunState::Stopping;
    pace_.interrupt();
}

bool ConsoleRun::waitForEnd(std::chrono::steady_clock::time_point deadline) const
{
    Kep::MutexLock lock(mutex_);
    while (!isOver(summary_.state))
        if (!lock.waitUntil(ended_, deadline))
            return isOver(summary_.state);
    return true;
}

void ConsoleRun::show(const RunResult& soFar)
{
    Kep::MutexLock lock(mutex_);
    services_.metrics.addProbed(soFar.step - result_.step);
    services_.metrics.addPrinters(soFar.printers.size() - result_.printers.size());
    takePrinters(soFar.printers);
    result_.step = soFar.step;
    result_.total = soFar.total;
    result_.state = soFar.state;
    summary_.step = soFar.step;
    summary_.found = soFar.printers.size();
}

/// Printers keep their places from status to status.
void ConsoleRun::takePrinters(const std::vector<Printer>& printers)
{
    for (std::size_t i = 0; i < printers.size(); ++i) {
        if (i == result_.printers.size()) {
            result_.printers.push_back(printers[i]);
            outcomes_->addPrinter(printers[i].ip);
        } else if (result_.printers[i] != printers[i]) {
            result_.printers[i] = printers[i];
        } else {
            continue;
        }
        messages_.push_back(i);
    }
}

void ConsoleRun::run(const RunRequest& request)
{
    std::string message;
    const RunState state = follow(request, message);
    services_.metrics.addEnded(state);
    services_.metrics.addOutcomes(outcomes_->counts());
    end(state, std::move(message));
}

/// The run counts as under way until it is kept, so that clients see it end once.
void ConsoleRun::end(RunState state, std::string message)
{
    RunSummary summary = currentSummary();
    summary.state = state;
    summary.message = std::move(message);
    summary.finished = std::chrono::system_clock::now();
    summary.kept = services_.keep && services_.keep(summary, *this);
    Kep::MutexLock lock(mutex_);
    result_.interrupted = state != RunState::Finished;
    summary_ = std::move(summary);
    ended_.notify_all();
}

RunState ConsoleRun::follow(const RunRequest& request, std::string& message)
{
    RunState state = RunState::Failed;
    try {
        const std::vector<RunStart> starts = startsOf(id_, request);
        const RunResult all = followRuns(calls_, pace_, *this, starts, request.addresses);
        state = all.interrupted ? RunState::Stopped : RunState::Finished;
        if (state == RunState::Finished)
            message = joined(adviceFor(outcomes_->counts(), useOf(request.profiles)));
    } catch (const std::exception& error) {
        message = error.what();
    }
    for (std::size_t number = 1; number <= request.profiles.size(); ++number)
        forgetInPlugin(cookieOf(id_, number));
    return state;
}

/// Ends what is left of a run; of one that has ended the plug-in lets go in time, which it looks after only when asked
/// to stop one.
void ConsoleRun::forgetInPlugin(const std::string& cookie)
{
    try {
        calls_.call({ServiceName, StopOperation, JsonValue{{"cookie", cookie}}.dump()}, {});
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the run itself has told what is to be told
    }
}

} // namespace Host
