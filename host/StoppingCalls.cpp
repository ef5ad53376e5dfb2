#include "host/StoppingCalls.h"

#include "host/PluginReply.h"
#include "host/Service.h"

#include <optional>

namespace Host {

namespace {

/// None when the plug-in will refuse the parameters for it.
std::optional<std::string> cookieOf(const PluginCall& call)
{
    const JsonValue document = JsonValue::parse(call.params, nullptr, false);
    const auto cookie = document.find("cookie");
    if (!document.is_object() || cookie == document.end() || !cookie->is_string())
        return std::nullopt;
    return cookie->get<std::string>();
}

bool isError(const std::string& reply)
{
    return errorOf(JsonValue::parse(reply, nullptr, false)).has_value();
}

bool isStart(const PluginCall& call)
{
    return call.operation == StartOperation || call.operation == BlockingStartOperation;
}

} // namespace

StoppingCalls::StoppingCalls(IPluginCalls& plugin) : plugin_(plugin) {}

std::string StoppingCalls::call(const PluginCall& call, const Entering& entering)
{
    if (isStart(call)) {
        if (const auto cookie = cookieOf(call))
            return start(call, *cookie, entering);
    } else if (call.operation == StopOperation) {
        if (const auto cookie = cookieOf(call))
            calls_.withdrawAndWait(*cookie);
    }
    return plugin_.call(call, entering);
}

void StoppingCalls::withdraw(Kep::Host::CallId work)
{
    plugin_.withdraw(work);
}

std::string StoppingCalls::start(const PluginCall& call, const std::string& cookie, const Entering& entering)
{
    Kep::Host::CallId work = 0;
    try {
        std::string reply = plugin_.call(call, [&](Kep::Host::CallId entered) {
            calls_.starting(cookie, work = entered);
            if (entering)
                entering(entered);
        });
        if (isError(reply))
            calls_.failed(cookie, work);
        else
            calls_.started(cookie, work);
        return reply;
    } catch (...) {
        calls_.failed(cookie, work);
        throw;
    }
}

} // namespace Host
