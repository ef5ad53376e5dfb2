#include "host/Commands.h"
#include "host/ComparisonFormats.h"
#include "host/DiscoverRuns.h"
#include "host/Files.h"
#include "host/Interruption.h"
#include "host/OutcomeReport.h"
#include "host/Output.h"
#include "host/Platform.h"
#include "host/PluginLibrary.h"
#include "host/PluginReply.h"
#include "host/ProgressLine.h"
#include "host/StreamOutput.h"
#include "host/TaskLimitNote.h"

#include <chrono>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace Host {

namespace {

/// Progress on standard error if that is a terminal, and printers on standard output if they are to be streamed.
class Progress : public IProgress {
public:
    explicit Progress(const DiscoverOptions& options)
    {
        if (isTerminal(Stream::Error) && !options.quiet)
            line_.emplace(
                std::cerr, [] { return terminalWidth(Stream::Error); }, std::chrono::steady_clock::now);
        if (options.stream)
            stream_.emplace();
    }

    ~Progress() override { clear(); }

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(const RunResult& soFar) override
    {
        writeStream(soFar);
        if (line_)
            line_->show(soFar);
    }

    void finish(const RunResult& result)
    {
        writeStream(result);
        if (line_)
            line_->finish(result);
    }

private:
    void writeStream(const RunResult& soFar)
    {
        const std::string lines = stream_ ? stream_->newLines(soFar) : "";
        if (lines.empty())
            return;
        clear(); // both streams may be the same terminal
        writeOutput(lines);
    }

    void clear()
    {
        if (line_)
            line_->clear();
    }

    std::optional<ProgressLine> line_;
    std::optional<StreamOutput> stream_;
};

std::vector<RunStart> startsOf(const DiscoverOptions& options)
{
    std::vector<RunStart> starts;
    for (const JsonValue& profile : options.profiles) {
        const std::string cookie = "discover-" + std::to_string(starts.size() + 1);
        starts.push_back({startDocument(options, profile, cookie), cookie});
    }
    return starts;
}

std::optional<Comparison> compareWithEarlier(const DiscoverOptions& options, const RunResult& result)
{
    if (!options.earlier)
        return std::nullopt;
    return compare(options.earlier->printers, result, options.ranges);
}

std::string outputText(const DiscoverOptions& options, const RunResult& result)
{
    const auto comparison = compareWithEarlier(options, result);
    if (options.stream)
        return streamEnd(result, comparison);
    if (options.format == Format::Json)
        return jsonText(result, comparison);
    if (options.format == Format::Csv)
        return csvText(result);
    const TextStyle style = outputStyle();
    const std::string table = tableText(result, style);
    return comparison ? table + '\n' + comparisonText(*comparison, options.earlier->name, style) : table;
}

/// A table goes to a terminal that cannot show its colours, though the user would have them.
bool losesColours(const DiscoverOptions& options)
{
    return options.format == Format::Table && !options.stream && isTerminal(Stream::Output) &&
           !showsColours(Stream::Output) && !environmentVariable("NO_COLOR");
}

/// What the user should know before the run.
void announce(const DiscoverOptions& options)
{
    if (options.quiet)
        return;
    noteLoweredTaskLimit(std::cerr);
    if (losesColours(options))
        std::cerr << "this terminal takes no escape sequences: the table has no colours\n";
    std::cerr << countText(countProbed(options.ranges), options.profiles.size()) << '\n';
    if (options.earlier && options.earlier->interrupted)
        std::cerr << "--diff: " << options.earlier->name
                  << " is of an interrupted run: printers that it did not reach show as new\n";
}

/// Sweeps and prints the result. A failure meanwhile, such as of a reader of the stream that has gone, ends the
/// process, as an interruption does: the end of the plug-in would wait for probes in flight.
void sweep(IPluginCalls& plugin, IPace& pace, const DiscoverOptions& options, const std::vector<RunStart>& starts,
           OutcomeReport& outcomes)
{
    try {
        RunResult result;
        {
            Progress progress(options);
            result = followRuns(plugin, pace, progress, starts, countProbed(options.ranges));
            progress.finish(result);
        }
        outcomes.write(result);
        writeOutput(outputText(options, result));
        if (!options.quiet)
            outcomes.tell(std::cerr, result.interrupted);
        if (result.interrupted)
            leaveProcess(ExitCode::Interrupted);
    } catch (const std::exception& error) {
        reportError(error.what());
        leaveProcess(ExitCode::Failed);
    }
}

} // namespace

ExitCode discover(const DiscoverArguments& arguments, const DiscoverOptions& options)
{
    const std::vector<RunStart> starts = startsOf(options);
    if (options.dryRun) {
        writeOutput(dryRunText(options));
        return ExitCode::Done;
    }
    OutcomeReport outcomes(options);
    Interruption interruption;
    PluginLibrary plugin(pluginFile(arguments.plugin));
    requireStarted(plugin.init(initDocument(dataStoreFile(arguments.dataStore), options.settings)));
    announce(options);
    sweep(plugin, interruption, options, starts, outcomes);
    plugin.deinit();
    return ExitCode::Done;
}

} // namespace Host
