#include "host/Commands.h"
#include "host/Errors.h"
#include "host/Files.h"
#include "host/Interruption.h"
#include "host/LineSplitter.h"
#include "host/Output.h"
#include "host/Platform.h"
#include "host/PluginLibrary.h"
#include "host/PluginReply.h"
#include "host/RpcServer.h"
#include "host/StoppingCalls.h"
#include "host/TaskLimitNote.h"
#include "host/console/ServeHttp.h"

#include <atomic>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

namespace Host {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t LongestMessage = std::size_t{16} * 1024 * 1024;
constexpr auto InterruptedFinish = 2s;
constexpr auto FinishStep = 250ms;

/// One session on standard streams.
class StdioSession {
public:
    StdioSession(IPluginCalls& plugin, Interruption& interruption)
        : interruption_(interruption), server_(plugin, [this](const std::string& answer) { send(answer); }),
          lines_(
              LongestMessage, [this](const std::string& line) { server_.handle(line); },
              [this] { server_.refuseLongMessage(LongestMessage); })
    {}

    /// Reads and answers until the input ends, the client no longer listens, or the user interrupts: then false.
    bool run()
    {
        std::string bytes;
        auto input = interruption_.readInput(bytes);
        for (; input == Interruption::Input::Data && !deaf_; input = interruption_.readInput(bytes))
            lines_.feed(bytes);
        if (input == Interruption::Input::End)
            lines_.finish();
        return input != Interruption::Input::Interrupted;
    }

    /// After the end of input: all calls are answered, without waiting for the work that they began. False when the
    /// user interrupts.
    bool finish()
    {
        while (!server_.finish(FinishStep))
            if (interruption_.interrupted())
                return false;
        return true;
    }

    void finishInterrupted() { server_.finish(InterruptedFinish); }

    bool deaf() const { return deaf_; }

private:
    void send(const std::string& answer) noexcept
    {
        try {
            writeOutput(answer + '\n');
        } catch (const std::exception&) {
            deaf_ = true;
        }
    }

    Interruption& interruption_;
    std::atomic<bool> deaf_{false};
    RpcServer server_;
    LineSplitter lines_;
};

void serveStdio(IPluginCalls& plugin, Interruption& interruption)
{
    StoppingCalls calls(plugin);
    StdioSession session(calls, interruption);
    if (!session.run() || !session.finish()) {
        session.finishInterrupted();
        leaveProcess(ExitCode::Interrupted); // the end of the plug-in would wait for probes in flight
    }
    if (session.deaf())
        throw Failure("the client no longer reads standard output");
}

} // namespace

ExitCode serve(const ServeArguments& arguments)
{
    if (!arguments.stdio && !arguments.http)
        throw UsageError("serve needs to know where: --stdio and --http ADDRESS:PORT are accepted");
    const std::string dataStore = dataStoreFile(arguments.dataStore);
    std::optional<HttpOptions> http;
    if (arguments.http)
        http = readHttpOptions(*arguments.http, arguments.tokenFile, arguments.hostNames, dataStore);
    Interruption interruption;
    PluginLibrary plugin(pluginFile(arguments.plugin));
    requireStarted(plugin.init(initDocument(dataStore, {})));
    noteLoweredTaskLimit(std::cerr);
    if (http)
        serveHttp(*http, plugin, interruption, std::cerr);
    else
        serveStdio(plugin, interruption);
    plugin.deinit();
    return ExitCode::Done;
}

} // namespace Host
