#include "host/DiscoverRuns.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

namespace Host {

namespace {

std::ptrdiff_t detailsOf(const Printer& printer)
{
    const auto given = [](const std::string& text) { return text.empty() ? 0 : 1; };
    return given(printer.hostname) + given(printer.name) + given(printer.sn) +
           std::count_if(printer.mac.begin(), printer.mac.end(), [](const auto& mac) { return !mac.empty(); });
}

/// The printers of earlier runs, and those that the present one adds.
class PrinterSum {
public:
    explicit PrinterSum(const std::vector<Printer>& before) : printers_(before)
    {
        for (std::size_t i = 0; i < before.size(); ++i)
            places_.emplace(before[i].ip, i);
    }

    /// Takes in the printers that have come since the last call.
    const std::vector<Printer>& update(const std::vector<Printer>& found)
    {
        for (; taken_ < found.size(); ++taken_)
            take(found[taken_]);
        return printers_;
    }

private:
    void take(const Printer& printer)
    {
        const auto known = places_.find(printer.ip);
        if (known == places_.end())
            printers_.push_back(printer);
        else if (detailsOf(printer) > detailsOf(printers_[known->second]))
            printers_[known->second] = printer;
    }

    std::vector<Printer> printers_;
    std::unordered_map<std::string, std::size_t> places_;
    std::size_t taken_ = 0;
};

/// Shows what one run brings on top of what those before it brought.
class RunOnTop : public IProgress {
public:
    RunOnTop(IProgress& progress, const RunResult& before)
        : progress_(progress), before_(before), printers_(before.printers)
    {}

    RunResult sum(const RunResult& run)
    {
        RunResult all;
        all.step = before_.step + run.step;
        all.total = before_.total;
        all.state = run.state;
        all.printers = printers_.update(run.printers);
        all.interrupted = run.interrupted;
        return all;
    }

    void show(const RunResult& soFar) override { progress_.show(sum(soFar)); }

private:
    IProgress& progress_;
    const RunResult& before_;
    PrinterSum printers_;
};

} // namespace

RunResult followRuns(IPluginCalls& plugin, IPace& pace, IProgress& progress, const std::vector<RunStart>& starts,
                     std::uint64_t addresses)
{
    RunResult all;
    all.total = addresses * starts.size();
    for (const RunStart& start : starts) {
        RunOnTop onTop(progress, all);
        all = onTop.sum(RunFollower(plugin, pace, onTop).follow(start.document, start.cookie));
        if (all.interrupted)
            break;
    }
    return all;
}

} // namespace Host
