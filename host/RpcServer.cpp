#include "host/RpcServer.h"

#include "host/Errors.h"
#include "host/PluginReply.h"
#include "host/Service.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Host {

namespace {

using namespace std::chrono_literals;

RpcCode codeOf(const PluginError& error)
{
    return error.code == "notFound" ? RpcCode::MethodNotFound : RpcCode::CallFailed;
}

/// The operation that a method names.
std::string operationOf(const RpcRequest& request)
{
    const std::string prefix = std::string(ServiceName) + '.';
    if (!request.method.starts_with(prefix))
        throw RpcError(RpcCode::MethodNotFound, "methods begin with " + prefix, request.id);
    return request.method.substr(prefix.size());
}

} // namespace

RpcServer::RpcServer(IPluginCalls& plugin, Send send) : plugin_(plugin), send_(std::move(send)), threads_(MostCalls) {}

RpcServer::~RpcServer() = default;

void RpcServer::handle(const std::string& message)
{
    if (message.find_first_not_of(" \t\r") == std::string::npos)
        return;
    try {
        accept(parseRequest(message));
    } catch (const RpcError& error) {
        answer(error);
    }
}

void RpcServer::refuseLongMessage(std::size_t longest)
{
    answer(RpcError(RpcCode::InvalidRequest, "the message is longer than " + std::to_string(longest) + " bytes"));
}

void RpcServer::accept(const RpcRequest& request)
{
    Call call{{ServiceName, operationOf(request), request.params}, request.id, false};
    call.blocking = call.call.operation == BlockingStartOperation;
    if (call.blocking) {
        Kep::MutexLock lock(mutex_);
        if (blockingStarts_ == MostBlockingStarts)
            throw RpcError(RpcCode::TooManyCalls,
                           "at most " + std::to_string(MostBlockingStarts) + " blocking starts run at once",
                           request.id);
        ++blockingStarts_;
    }
    threads_.run([this, call = std::move(call)] { carryOut(call); });
}

void RpcServer::carryOut(const Call& call)
{
    const std::string text = answerTo(call);
    if (call.blocking) {
        Kep::MutexLock lock(mutex_);
        --blockingStarts_;
    }
    answer(call.id, text);
}

std::string RpcServer::answerTo(const Call& call)
{
    Kep::Host::CallId work = 0;
    try {
        const std::string reply = plugin_.call(call.call, [&](Kep::Host::CallId entered) { enter(work = entered); });
        leave(work);
        const auto error = errorOf(parseReply(reply));
        return error ? errorAnswer(call.id, codeOf(*error), error->message, reply) : resultAnswer(call.id, reply);
    } catch (const std::exception& error) {
        leave(work);
        return errorAnswer(call.id, RpcCode::InternalError, error.what());
    }
}

void RpcServer::enter(Kep::Host::CallId work)
{
    Kep::MutexLock lock(mutex_);
    work_.insert(work);
    if (finishing_)
        plugin_.withdraw(work);
}

void RpcServer::leave(Kep::Host::CallId work)
{
    Kep::MutexLock lock(mutex_);
    work_.erase(work);
}

void RpcServer::withdrawAll()
{
    Kep::MutexLock lock(mutex_);
    finishing_ = true;
    for (const Kep::Host::CallId work : work_)
        plugin_.withdraw(work);
}

bool RpcServer::finish(std::chrono::milliseconds time)
{
    withdrawAll();
    return threads_.waitIdle(time);
}

void RpcServer::answer(const std::string& id, const std::string& text)
{
    if (id.empty())
        return;
    Kep::MutexLock lock(sending_);
    send_(text);
}

void RpcServer::answer(const RpcError& error)
{
    answer(error.id(), errorAnswer(error.id(), error.code(), error.what()));
}

} // namespace Host
