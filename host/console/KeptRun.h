/// A run that the data store kept.
#pragma once

#include "host/console/IRun.h"
#include "host/history/RunHistory.h"

namespace Host {

class ConsoleRun;
struct RunSummary;

/// Never changes.
class KeptRun : public IRun {
public:
    explicit KeptRun(RunRecord record);

    JsonValue summary() const override;
    PrinterSlice printers(std::size_t from, std::size_t most) const override;
    RunResult result() const override;
    const AddressRanges& ranges() const override { return ranges_; }
    std::vector<RunOutcomes::Entry> outcomes(std::uint32_t from, std::size_t most, const Wanted& wanted) const override;

private:
    const RunRecord record_;
    const AddressRanges ranges_;
};

/// What the data store is to keep of a run that has ended with `summary`.
RunRecord recordOf(const RunSummary& summary, const ConsoleRun& run);

/// The summary that clients get, of one that the data store kept.
JsonValue shownSummary(JsonValue kept);

/// Whether a summary that the data store kept is of a finished run over `ranges`.
bool isFinishedRunOver(const JsonValue& kept, const AddressRanges& ranges);

} // namespace Host
