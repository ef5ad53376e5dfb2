#include "host/Commands.h"
#include "host/Files.h"
#include "host/Interruption.h"
#include "host/Output.h"
#include "host/Platform.h"
#include "host/PluginLibrary.h"
#include "host/PluginReply.h"
#include "host/ProgressLine.h"
#include "host/RunFollower.h"

#include <cstdlib>
#include <iostream>
#include <optional>

namespace Host {

namespace {

constexpr const char* Cookie = "discover";

/// Paints on standard error if that is a terminal.
class Progress : public IProgress {
public:
    Progress()
    {
        if (isTerminal(Stream::Error))
            line_.emplace(std::cerr, terminalWidth, std::chrono::steady_clock::now);
    }

    ~Progress() override
    {
        if (line_)
            line_->clear();
    }

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(const RunResult& soFar) override
    {
        if (line_)
            line_->show(soFar);
    }

    void finish(const RunResult& result)
    {
        if (line_)
            line_->finish(result);
    }

private:
    std::optional<ProgressLine> line_;
};

} // namespace

ExitCode discover(const DiscoverArguments& arguments, const DiscoverOptions& options)
{
    const std::string request = startDocument(options.config, Cookie);
    Interruption interruption;
    PluginLibrary plugin(pluginFile(arguments.plugin));
    requireStarted(plugin.init(initDocument(dataStoreFile(arguments.dataStore), options.settings)));
    RunResult result;
    {
        Progress progress;
        result = RunFollower(plugin, interruption, progress).follow(request, Cookie);
        progress.finish(result);
    }
    writeOutput(resultText(options.format, result));
    if (result.interrupted)
        std::_Exit(static_cast<int>(ExitCode::Interrupted)); // the end of the plug-in would wait for probes in flight
    plugin.deinit();
    return ExitCode::Done;
}

} // namespace Host
