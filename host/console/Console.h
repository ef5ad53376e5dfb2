/// The web console: every request that gets through the HTTP server is answered here.
#pragma once

#include "host/IPluginCalls.h"
#include "host/RpcCalls.h"
#include "host/console/ConsoleRuns.h"
#include "host/console/ConsoleSchedules.h"
#include "host/console/Metrics.h"
#include "host/console/OutcomeRouter.h"
#include "host/console/RateLimit.h"
#include "host/console/RequestGuard.h"
#include "host/console/Routes.h"
#include "host/console/RunRoutes.h"
#include "host/console/Slots.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace Host {

class Console {
public:
    struct Options {
        RequestGuard::Options guard;
        LocalNetworks localNetworks = {};
        std::string dataStore = {}; ///< path of the file that keeps runs and schedules; may be empty when none are kept
        std::size_t keptRuns = 0;   ///< of those that have ended; 0: neither runs nor schedules are kept
        double requestsPerSecond = 100; ///< of one client
        double requestsAtOnce = 400;
    };

    /// `plugin` is started and outlives it; it stops runs without holding up others (StoppingCalls.h). Throws
    /// `GenericException` when the data store is needed and cannot be used.
    Console(IPluginCalls& plugin, Options options);

    /// Stops all runs and waits until they have.
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Whether a request is let in: none, or the answer that keeps it out (HttpServer.h). Any thread.
    std::optional<HttpResponse> turnAway(const HttpRequest& head);

    /// Answers a request that was let in. Any thread, several at once.
    HttpResponse answer(const HttpRequest& request);

    /// Answers a request that the server found at fault (HttpServer.h).
    HttpResponse refuse(int status);

    /// Has all runs stop, and calls return that wait for one, and waits at most for `time` until the runs have stopped.
    /// Whether all have.
    bool end(std::chrono::milliseconds time);

private:
    HttpResponse finished(HttpResponse response, const HttpRequest& request);
    HttpResponse answerRpc(const std::string& message);
    MetricsNow now() const;
    void addSession();
    void addPage();
    void addService();
    void addSchedules();
    ConsoleSchedules& schedules();

    const std::string instance_;
    const Options options_;
    const RequestGuard guard_;
    RateLimit rate_;
    Slots slots_;
    Slots blockingSlots_;
    Metrics metrics_;
    const std::shared_ptr<OutcomeRouter> router_ = std::make_shared<OutcomeRouter>();
    RpcCalls rpc_;
    const std::unique_ptr<RunHistory> history_;
    ConsoleRuns runs_;
    std::optional<ConsoleSchedules> schedules_;
    Routes routes_;
};

} // namespace Host
