#include "host/RpcCalls.h"

#include "host/PluginReply.h"
#include "host/Service.h"

#include <exception>

namespace Host {

namespace {

RpcCode codeOf(const PluginError& error)
{
    return error.code == "notFound" ? RpcCode::MethodNotFound : RpcCode::CallFailed;
}

} // namespace

PluginCall pluginCallOf(const RpcRequest& request)
{
    const std::string prefix = std::string(ServiceName) + '.';
    if (!request.method.starts_with(prefix))
        throw RpcError(RpcCode::MethodNotFound, "methods begin with " + prefix, request.id);
    return {ServiceName, request.method.substr(prefix.size()), request.params};
}

RpcCalls::RpcCalls(IPluginCalls& plugin) : plugin_(plugin) {}

std::string RpcCalls::carryOut(const PluginCall& call, const std::string& id)
{
    Kep::Host::CallId work = 0;
    try {
        const std::string reply = plugin_.call(call, [&](Kep::Host::CallId entered) { enter(work = entered); });
        leave(work);
        const auto error = errorOf(parseReply(reply));
        return error ? errorAnswer(id, codeOf(*error), error->message, reply) : resultAnswer(id, reply);
    } catch (const std::exception& error) {
        leave(work);
        return errorAnswer(id, RpcCode::InternalError, error.what());
    }
}

void RpcCalls::withdrawAll()
{
    Kep::MutexLock lock(mutex_);
    withdrawing_ = true;
    for (const Kep::Host::CallId work : work_)
        plugin_.withdraw(work);
}

void RpcCalls::enter(Kep::Host::CallId work)
{
    Kep::MutexLock lock(mutex_);
    work_.insert(work);
    if (withdrawing_)
        plugin_.withdraw(work);
}

void RpcCalls::leave(Kep::Host::CallId work)
{
    Kep::MutexLock lock(mutex_);
    work_.erase(work);
}

} // namespace Host
