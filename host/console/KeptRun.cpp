#include "host/console/KeptRun.h"

#include "host/Errors.h"
#include "host/Targets.h"
#include "host/console/ConsoleRun.h"
#include "host/console/RunDocuments.h"

#include <algorithm>
#include <utility>

namespace Host {

namespace {

constexpr const char* SweptMember = "swept"; // of summaries as they are kept
constexpr std::size_t LongestSwept = 65536;

/// The ranges as targets; empty when they are too many to be kept.
std::string sweptText(const AddressRanges& ranges)
{
    std::string text;
    for (const AddressRange& range : ranges) {
        text += (text.empty() ? "" : ",") + rangeText(range);
        if (text.size() > LongestSwept)
            return {};
    }
    return text;
}

/// Where they were too many, all addresses: what was found elsewhere is not told from what was not swept.
AddressRanges sweptRanges(const JsonValue& kept)
{
    try {
        return merged(parseExcludes(kept.value(SweptMember, std::string())));
    } catch (const UsageError&) {
        return {{0, LastAddress}};
    }
}

} // namespace

KeptRun::KeptRun(RunRecord record) : record_(std::move(record)), ranges_(sweptRanges(record_.summary)) {}

JsonValue KeptRun::summary() const
{
    return shownSummary(record_.summary);
}

PrinterSlice KeptRun::printers(std::size_t from, std::size_t most) const
{
    const std::vector<Printer>& all = record_.printers;
    const std::size_t begin = std::min(from, all.size());
    const std::size_t end = begin + std::min(most, all.size() - begin);
    const auto at = [&](std::size_t place) { return all.begin() + static_cast<std::ptrdiff_t>(place); };
    return {{at(begin), at(end)}, end};
}

RunResult KeptRun::result() const
{
    RunResult result;
    result.step = record_.summary.value("step", std::uint64_t{0});
    result.total = record_.summary.value("total", std::uint64_t{0});
    result.printers = record_.printers;
    result.interrupted = record_.summary.value("state", std::string()) != "finished";
    return result;
}

std::vector<RunOutcomes::Entry> KeptRun::outcomes(std::uint32_t from, std::size_t most, const Wanted& wanted) const
{
    std::vector<RunOutcomes::Entry> entries;
    for (const RunOutcomes::Entry& entry : record_.outcomes)
        if (entries.size() < most && entry.address >= from && wanted(entry.outcome))
            entries.push_back(entry);
    return entries;
}

RunRecord recordOf(const RunSummary& summary, const ConsoleRun& run)
{
    RunRecord record;
    record.id = summary.id;
    record.ended = *summary.finished;
    record.summary = summaryDocument(summary);
    record.summary[SweptMember] = sweptText(run.ranges());
    record.printers = run.result().printers;
    record.outcomes = run.outcomes(0, RunHistory::MostOutcomes,
                                   [](AddressOutcome outcome) { return outcome != AddressOutcome::Silent; });
    return record;
}

JsonValue shownSummary(JsonValue kept)
{
    kept.erase(SweptMember);
    return kept;
}

bool isFinishedRunOver(const JsonValue& kept, const AddressRanges& ranges)
{
    const std::string swept = kept.value(SweptMember, std::string());
    return kept.value("state", std::string()) == "finished" && !swept.empty() && swept == sweptText(ranges);
}

} // namespace Host
