#include "host/console/ConsoleRuns.h"

#include "host/console/HttpReplies.h"
#include "host/console/KeptRun.h"
#include "host/console/RandomId.h"

#include <algorithm>
#include <exception>
#include <numeric>
#include <set>
#include <utility>

namespace Host {

namespace {

bool hasEnded(const ConsoleRuns::Run& run)
{
    return !run->running();
}

} // namespace

ConsoleRuns::ConsoleRuns(IPluginCalls& plugin, OutcomeRouter& router, Metrics& metrics, RunHistory* history)
    : history_(history), services_{plugin, router, metrics, [this](const RunSummary& summary, const ConsoleRun& run) {
                                       return keep(summary, run);
                                   }}
{}

ConsoleRuns::~ConsoleRuns()
{
    for (const Run& run : list()) // all at once; then each is waited for
        run->stop();
}

ConsoleRuns::Run ConsoleRuns::start(RunRequest request)
{
    Kep::MutexLock lock(mutex_);
    const auto running = std::count_if(runs_.begin(), runs_.end(), [](const Run& run) { return run->running(); });
    if (ending_ || running >= static_cast<std::ptrdiff_t>(MostRunning))
        throw HttpError(429, "tooManyRuns",
                        "at most " + std::to_string(MostRunning) + " runs are under way at once; stop one, or wait");
    makeRoom(request.addresses);
    runs_.push_back(std::make_shared<ConsoleRun>(randomId(), std::move(request), services_));
    return runs_.back();
}

void ConsoleRuns::makeRoom(std::uint64_t addresses)
{
    while (static_cast<std::size_t>(std::count_if(runs_.begin(), runs_.end(), hasEnded)) >= MostEnded)
        dropOldest();
    while (addressesHeld() + addresses > MostAddressesHeld)
        if (!dropOldest())
            throw HttpError(429, "tooManyRuns",
                            "runs of " + std::to_string(addressesHeld()) +
                                " addresses are under way; stop one, or wait");
}

/// Of those that are over; whether there was one.
bool ConsoleRuns::dropOldest()
{
    const auto oldest = std::find_if(runs_.begin(), runs_.end(), hasEnded);
    if (oldest == runs_.end())
        return false;
    runs_.erase(oldest);
    return true;
}

std::uint64_t ConsoleRuns::addressesHeld() const
{
    return std::accumulate(runs_.begin(), runs_.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const Run& run) { return sum + run->addresses(); });
}

/// A run that cannot be kept is still there as long as the program runs.
bool ConsoleRuns::keep(const RunSummary& summary, const ConsoleRun& run)
{
    if (history_ == nullptr)
        return false;
    try {
        RunSummary kept = summary;
        kept.kept = true;
        history_->add(recordOf(kept, run));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

std::vector<JsonValue> ConsoleRuns::keptSummaries() const
{
    return history_ == nullptr ? std::vector<JsonValue>() : history_->summaries();
}

std::vector<ConsoleRuns::Run> ConsoleRuns::list() const
{
    Kep::MutexLock lock(mutex_);
    return {runs_.rbegin(), runs_.rend()};
}

JsonValue ConsoleRuns::summaries() const
{
    JsonValue all = JsonValue::array();
    std::set<std::string> own;
    for (const Run& run : list()) {
        all.push_back(run->summary());
        own.insert(run->id());
    }
    for (JsonValue& kept : keptSummaries())
        if (!own.contains(kept.value("id", std::string())))
            all.push_back(shownSummary(std::move(kept)));
    return all;
}

ConsoleRuns::Run ConsoleRuns::findOwn(const std::string& id) const
{
    Kep::MutexLock lock(mutex_);
    const auto run = std::find_if(runs_.begin(), runs_.end(), [&](const Run& each) { return each->id() == id; });
    return run == runs_.end() ? nullptr : *run;
}

ConsoleRuns::AnyRun ConsoleRuns::find(const std::string& id) const
{
    if (Run own = findOwn(id))
        return own;
    auto record = history_ == nullptr ? std::nullopt : history_->find(id);
    if (!record)
        throw notFound();
    return std::make_shared<KeptRun>(std::move(*record));
}

ConsoleRuns::AnyRun ConsoleRuns::before(const std::string& id, const AddressRanges& ranges) const
{
    bool passed = false; // the run itself; all that follows came before it
    for (const Run& run : list()) {
        if (passed && run->ranges() == ranges && run->state() == RunState::Finished)
            return run;
        passed = passed || run->id() == id;
    }
    for (const JsonValue& kept : keptSummaries()) {
        const std::string other = kept.value("id", std::string());
        if (passed && isFinishedRunOver(kept, ranges) && findOwn(other) == nullptr)
            return find(other);
        passed = passed || other == id;
    }
    return nullptr;
}

void ConsoleRuns::stop(const std::string& id, std::chrono::steady_clock::time_point deadline)
{
    if (const Run own = findOwn(id)) {
        own->stop();
        own->waitForEnd(deadline);
    }
}

void ConsoleRuns::forget(const std::string& id)
{
    const Run own = findOwn(id); // destroyed, if at all, without the lock
    if (own && own->running())
        throw HttpError(409, "running", "the run is under way; stop it first");
    const bool kept = history_ != nullptr && history_->remove(id);
    if (!own && !kept)
        throw notFound();
    Kep::MutexLock lock(mutex_);
    std::erase(runs_, own);
}

bool ConsoleRuns::end(std::chrono::milliseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    {
        Kep::MutexLock lock(mutex_);
        ending_ = true;
    }
    const std::vector<Run> runs = list();
    for (const Run& run : runs)
        run->stop();
    return std::all_of(runs.begin(), runs.end(), [&](const Run& run) { return run->waitForEnd(deadline); });
}

} // namespace Host
