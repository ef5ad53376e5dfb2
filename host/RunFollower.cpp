#include "host/RunFollower.h"

#include "host/Errors.h"
#include "host/PluginReply.h"
#include "host/PrinterDocument.h"
#include "host/Service.h"

#include <algorithm>
#include <cstdint>

namespace Host {

namespace {

using namespace std::chrono_literals;

// The first answers come fast for a single address; a long run is not asked more than four times a second.
constexpr auto FirstInterval = 50ms;
constexpr auto LongestInterval = 250ms;
constexpr auto DrainTime = 2s;

JsonValue succeed(const std::string& operation, const std::string& reply)
{
    JsonValue document = parseReply(reply);
    if (const auto error = errorOf(document))
        throw Failure(operation + " failed: " + error->message);
    return document;
}

/// Counts are written as signed 32-bit numbers.
std::uint32_t countOf(const JsonValue& document, const char* key)
{
    return static_cast<std::uint32_t>(document.at(key).get<std::int64_t>());
}

void merge(const JsonValue& status, RunResult& result)
{
    try {
        result.step = countOf(status, "step");
        result.total = countOf(status, "total");
        result.state = status.at("state").get<int>();
        for (const JsonValue& printer : status.at("printers"))
            result.printers.push_back(printerOf(printer));
    } catch (const JsonValue::exception&) {
        throw Failure("the plug-in's status is not as agreed");
    }
}

} // namespace

RunFollower::RunFollower(IPluginCalls& plugin, IPace& pace, IProgress& progress)
    : plugin_(plugin), pace_(pace), progress_(progress)
{}

RunResult RunFollower::follow(const std::string& startDocument, const std::string& cookie)
{
    RunResult result;
    if (pace_.interrupted()) {
        result.interrupted = true;
        return result;
    }
    start(startDocument);
    auto interval = std::chrono::milliseconds(FirstInterval);
    for (takeStatus(result, cookie); result.state != StateFinished; takeStatus(result, cookie)) {
        if (!pace_.sleep(interval)) {
            drain(result, cookie);
            break;
        }
        interval = std::min<std::chrono::milliseconds>(interval * 3 / 2, LongestInterval);
    }
    return result;
}

void RunFollower::start(const std::string& startDocument)
{
    const std::string reply =
        plugin_.call({ServiceName, StartOperation, startDocument}, [this](Kep::Host::CallId work) { work_ = work; });
    succeed(StartOperation, reply);
}

void RunFollower::takeStatus(RunResult& result, const std::string& cookie)
{
    const JsonValue request = {{"cookie", cookie}, {"firstIdx", result.printers.size()}};
    merge(succeed(StatusOperation, plugin_.call({ServiceName, StatusOperation, request.dump()}, {})), result);
    progress_.show(result);
}

void RunFollower::drain(RunResult& result, const std::string& cookie)
{
    plugin_.withdraw(work_);
    result.interrupted = true;
    const auto deadline = pace_.now() + DrainTime;
    while (result.state != StateFinished && pace_.now() < deadline) {
        pace_.rest(FirstInterval);
        takeStatus(result, cookie);
    }
}

} // namespace Host
