#include "host/RpcServer.h"

#include "host/Service.h"

#include <utility>

namespace Host {

RpcServer::RpcServer(IPluginCalls& plugin, Send send) : calls_(plugin), send_(std::move(send)), threads_(MostCalls) {}

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
    Call call{pluginCallOf(request), request.id, false};
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
    const std::string text = calls_.carryOut(call.call, call.id);
    if (call.blocking) {
        Kep::MutexLock lock(mutex_);
        --blockingStarts_;
    }
    answer(call.id, text);
}

bool RpcServer::finish(std::chrono::milliseconds time)
{
    calls_.withdrawAll();
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
