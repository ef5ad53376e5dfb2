#include "host/console/Console.h"

#include "host/Service.h"
#include "host/console/HttpReplies.h"
#include "host/console/PageFiles.h"
#include "host/console/RandomId.h"

#include <exception>
#include <utility>

namespace Host {

namespace {

using Names = std::vector<std::string>;

// Of the server's threads; the others stay free for what is answered at once.
constexpr std::size_t MostWaiting = 16;
constexpr std::size_t MostBlockingStarts = 8;

/// The operations that start and stop the service itself are the program's own.
void requireOffered(const PluginCall& call, const std::string& id)
{
    for (const char* operation : {"startService", "stopService"})
        if (call.operation == operation)
            throw RpcError(RpcCode::MethodNotFound, std::string(operation) + " is not offered here", id);
}

/// A notification has no answer.
HttpResponse rpcResponse(const std::string& id, const std::string& answer)
{
    return id.empty() ? HttpResponse{.status = 204} : HttpResponse{.body = answer + '\n'};
}

std::unique_ptr<RunHistory> historyOf(const Console::Options& options)
{
    return options.keptRuns > 0 ? std::make_unique<RunHistory>(options.dataStore, options.keptRuns) : nullptr;
}

HttpResponse withFields(HttpResponse response, const HttpRequest& request)
{
    response.fields.emplace_back("Cache-Control", findPageFile(request.path) == nullptr ? "no-store" : "no-cache");
    if (response.status == 401)
        response.fields.emplace_back("WWW-Authenticate", "Bearer");
    if (response.status == 429)
        response.fields.emplace_back("Retry-After", "1");
    return withBrowserRules(std::move(response));
}

} // namespace

Console::Console(IPluginCalls& plugin, Options options)
    : instance_(randomId()), options_(std::move(options)), guard_(options_.guard),
      rate_(options_.requestsPerSecond, options_.requestsAtOnce), slots_(MostWaiting),
      blockingSlots_(MostBlockingStarts), rpc_(plugin), history_(historyOf(options_)),
      runs_(plugin, *router_, metrics_, history_.get())
{
    if (history_)
        schedules_.emplace(options_.dataStore, runs_, options_.localNetworks);
    Kep::Host::observeOutcomes(router_);
    addPage();
    addService();
    addSession();
    addRunRoutes(routes_, instance_, runs_, slots_, options_.localNetworks);
    addSchedules();
}

Console::~Console()
{
    Kep::Host::observeOutcomes(nullptr);
}

std::optional<HttpResponse> Console::turnAway(const HttpRequest& head)
{
    try {
        if (!rate_.allow(head.client, std::chrono::steady_clock::now()))
            throw HttpError(429, "rate", "too many requests; try again soon");
        guard_.check(head);
        return std::nullopt;
    } catch (const HttpError& error) {
        return finished(errorResponse(error), head);
    }
}

HttpResponse Console::answer(const HttpRequest& request)
{
    try {
        return finished(routes_.answer(request), request);
    } catch (const HttpError& error) {
        return finished(errorResponse(error), request);
    } catch (const std::exception&) {
        return finished(refusalOf(500), request);
    }
}

HttpResponse Console::finished(HttpResponse response, const HttpRequest& request)
{
    metrics_.addResponse(response.status);
    return withFields(std::move(response), request);
}

HttpResponse Console::refuse(int status)
{
    metrics_.addResponse(status);
    return withBrowserRules(refusalOf(status));
}

HttpResponse Console::answerRpc(const std::string& message)
{
    try {
        const RpcRequest request = parseRequest(message);
        const PluginCall call = pluginCallOf(request);
        requireOffered(call, request.id);
        const Slots::Hold slot(call.operation == BlockingStartOperation ? blockingSlots_ : slots_);
        if (!slot)
            throw RpcError(RpcCode::TooManyCalls, "too many calls are under way", request.id);
        return rpcResponse(request.id, rpc_.carryOut(call, request.id));
    } catch (const RpcError& error) {
        return rpcResponse(error.id(), errorAnswer(error.id(), error.code(), error.what()));
    }
}

bool Console::end(std::chrono::milliseconds time)
{
    rpc_.withdrawAll();
    return runs_.end(time);
}

MetricsNow Console::now() const
{
    MetricsNow now;
    for (const ConsoleRuns::Run& run : runs_.list()) {
        const RunState state = run->state();
        now.runsRunning += state == RunState::Running ? 1 : 0;
        now.runsStopping += state == RunState::Stopping ? 1 : 0;
        const Kep::Host::CallWork work = run->work();
        now.tasksQueued += work.queued;
        now.tasksRunning += work.running;
    }
    return now;
}

void Console::addService()
{
    routes_.add("GET", "/healthz", [](const HttpRequest&, const Names&) { return jsonResponse({{"status", "ok"}}); });
    routes_.add("GET", "/metrics", [this](const HttpRequest&, const Names&) {
        return HttpResponse{.contentType = "text/plain; version=0.0.4; charset=utf-8", .body = metrics_.text(now())};
    });
    routes_.add("POST", "/rpc", [this](const HttpRequest& request, const Names&) { return answerRpc(request.body); });
}

void Console::addSession()
{
    routes_.add("GET", "/api/session", [this](const HttpRequest&, const Names&) {
        return jsonResponse({{"instance", instance_},
                             {"version", HOST_VERSION},
                             {"token", options_.guard.token.has_value()},
                             {"confirmFrom", ConfirmFrom},
                             {"history", {{"kept", options_.keptRuns}}}});
    });
}

ConsoleSchedules& Console::schedules()
{
    if (!schedules_)
        throw HttpError(409, "historyOff",
                        "schedules need runs to be kept; printer-discovery settings set host.history.runs 100 does it");
    return *schedules_;
}

void Console::addSchedules()
{
    routes_.add("GET", "/api/schedules", [this](const HttpRequest&, const Names&) {
        return jsonResponse({{"schedules", schedules_ ? schedules_->list() : JsonValue::array()}});
    });
    routes_.add("POST", "/api/schedules", [this](const HttpRequest& request, const Names&) {
        return jsonResponse(schedules().add(request.body), 201);
    });
    routes_.add("DELETE", "/api/schedules/*", [this](const HttpRequest&, const Names& names) {
        schedules().remove(names[0]);
        return HttpResponse{.status = 204};
    });
}

void Console::addPage()
{
    const auto add = [this](const std::string& path, const PageFile& file) {
        routes_.add("GET", path, [&file](const HttpRequest&, const Names&) {
            return HttpResponse{.contentType = std::string(mediaType(file.path)), .body = std::string(file.content)};
        });
    };
    for (const PageFile& file : pageFiles())
        add(std::string(file.path), file);
    if (const PageFile* index = findPageFile("/"))
        add("/", *index);
}

} // namespace Host
