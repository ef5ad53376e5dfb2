#include "host/history/RunHistory.h"

#include "Kep/Host/Settings.h"
#include "host/PrinterDocument.h"
#include "host/history/Keys.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Host {

namespace {

using Changes = Kep::Host::DataStore::Changes;

constexpr const char* LimitKey = "host.history.runs";
constexpr const char* Summaries = "history.summaries.";

std::string summaryKey(const std::string& place)
{
    return Summaries + place;
}

std::string detailsKey(const std::string& place)
{
    return "history.details." + place;
}

std::size_t bytesOf(const Printer& printer)
{
    std::size_t bytes = printer.hostname.size() + printer.name.size() + printer.sn.size();
    for (const std::string& mac : printer.mac)
        bytes += mac.size();
    return bytes;
}

JsonValue printersDocument(const std::vector<Printer>& printers)
{
    JsonValue document = JsonValue::array();
    std::size_t bytes = 0;
    for (const Printer& printer : printers) {
        bytes += bytesOf(printer);
        if (document.size() == RunHistory::MostPrinters || bytes > RunHistory::MostBytes)
            break;
        document.push_back(documentOf(printer));
    }
    return document;
}

JsonValue outcomesDocument(const std::vector<RunOutcomes::Entry>& outcomes)
{
    JsonValue document = JsonValue::array();
    for (const RunOutcomes::Entry& entry : outcomes) {
        if (entry.outcome <= AddressOutcome::Silent)
            continue;
        if (document.size() == RunHistory::MostOutcomes)
            break;
        document.push_back(
            {{"ip", addressText(entry.address)}, {"outcome", nameOf(entry.outcome)}, {"problem", entry.problem}});
    }
    return document;
}

/// Throws `JsonValue::exception` for what is no entry.
RunOutcomes::Entry entryOf(const JsonValue& document)
{
    return {parseAddress(document.at("ip").get<std::string>()).value_or(0),
            outcomeNamed(document.at("outcome").get<std::string>()).value_or(AddressOutcome::NotProbed),
            document.at("problem").get<std::string>()};
}

/// What is not readable is left out.
void readDetails(const std::string& text, RunRecord& run)
{
    try {
        const JsonValue document = JsonValue::parse(text);
        for (const JsonValue& printer : document.at("printers"))
            run.printers.push_back(printerOf(printer));
        for (const JsonValue& entry : document.at("outcomes"))
            run.outcomes.push_back(entryOf(entry));
    } catch (const JsonValue::exception&) {
        return;
    }
}

} // namespace

std::size_t keptRuns(const std::string& path)
{
    const std::string value = Kep::Host::DataStore(path).get(LimitKey).value_or("0");
    Kep::Host::checkSetting(LimitKey, value);
    return std::stoul(value);
}

RunHistory::RunHistory(std::string path, std::size_t most) : most_(most), store_(std::move(path))
{
    const Kep::MutexLock lock(mutex_);
    load();
}

std::vector<JsonValue> RunHistory::summaries() const
{
    const Kep::MutexLock lock(mutex_);
    std::vector<JsonValue> summaries;
    for (auto run = runs_.rbegin(); run != runs_.rend(); ++run)
        summaries.push_back(run->second);
    return summaries;
}

std::optional<RunRecord> RunHistory::find(const std::string& id) const
{
    const Kep::MutexLock lock(mutex_);
    const auto place = placedAt(id);
    if (place == runs_.end())
        return std::nullopt;
    RunRecord run{.id = id, .ended = timeOf(place->first), .summary = place->second, .printers = {}, .outcomes = {}};
    readDetails(store_.get(detailsKey(place->first)).value_or(""), run);
    return run;
}

void RunHistory::add(const RunRecord& run)
{
    if (most_ == 0)
        return;
    const Kep::MutexLock lock(mutex_);
    const std::string place = placeOf(run.ended, run.id);
    const JsonValue details = {{"printers", printersDocument(run.printers)},
                               {"outcomes", outcomesDocument(run.outcomes)}};
    Runs runs = runs_;
    runs[place] = run.summary;
    change({{summaryKey(place), textOf(run.summary)}, {detailsKey(place), textOf(details)}}, std::move(runs));
}

bool RunHistory::remove(const std::string& id)
{
    const Kep::MutexLock lock(mutex_);
    const auto place = placedAt(id);
    if (place == runs_.end())
        return false;
    Runs runs = runs_;
    runs.erase(place->first);
    change({{summaryKey(place->first), std::nullopt}, {detailsKey(place->first), std::nullopt}}, std::move(runs));
    return true;
}

void RunHistory::load()
{
    Runs runs;
    for (const auto& [key, text] : store_.list(Summaries)) {
        const std::string place = key.substr(std::string_view(Summaries).size());
        JsonValue summary = JsonValue::parse(text, nullptr, false);
        if (summary.is_object() && isPlace(place))
            runs[place] = std::move(summary);
    }
    change({}, std::move(runs));
}

/// Makes `changes`, which lead to `runs`, and drops the oldest of these that are too many.
void RunHistory::change(Changes changes, Runs runs)
{
    while (runs.size() > most_) {
        changes[summaryKey(runs.begin()->first)] = std::nullopt;
        changes[detailsKey(runs.begin()->first)] = std::nullopt;
        runs.erase(runs.begin());
    }
    if (!changes.empty())
        store_.change(changes);
    runs_ = std::move(runs);
}

RunHistory::Runs::const_iterator RunHistory::placedAt(const std::string& id) const
{
    return std::find_if(runs_.begin(), runs_.end(), [&](const auto& run) { return idOf(run.first) == id; });
}

} // namespace Host
