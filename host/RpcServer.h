/// Carries JSON-RPC messages to the plug-in and its answers back.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/CallThreads.h"
#include "host/JsonRpc.h"
#include "host/RpcCalls.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace Host {

/// The public functions are for one thread; calls into the plug-in run side by side on threads of its own.
class RpcServer {
public:
    static constexpr std::size_t MostCalls = 256;         ///< at once; further messages wait
    static constexpr std::size_t MostBlockingStarts = 64; ///< at once; further ones are refused

    /// Takes one answer, without a line end. Called from several threads, never from two at once. Throws nothing.
    using Send = std::function<void(const std::string& answer)>;

    /// Keeps the reference.
    RpcServer(IPluginCalls& plugin, Send send);

    /// Waits for the calls that are under way.
    ~RpcServer();
    RpcServer(const RpcServer&) = delete;
    RpcServer& operator=(const RpcServer&) = delete;

    /// Takes one message and returns when it is answered or its call under way. A blank message is passed over.
    void handle(const std::string& message);

    /// Answers a message that was too long to keep.
    void refuseLongMessage(std::size_t longest);

    /// Withdraws the work of the calls under way, so that blocking starts return, and waits at most for `time` until
    /// all calls are answered; whether they are.
    bool finish(std::chrono::milliseconds time);

private:
    struct Call {
        PluginCall call;
        std::string id;
        bool blocking;
    };

    void accept(const RpcRequest& request);
    void carryOut(const Call& call);
    void answer(const std::string& id, const std::string& text);
    void answer(const RpcError& error);

    RpcCalls calls_;

    Kep::Mutex sending_;
    const Send send_ KEP_GUARDED_BY(sending_);

    Kep::Mutex mutex_;
    std::size_t blockingStarts_ KEP_GUARDED_BY(mutex_) = 0;

    CallThreads threads_; ///< the last member: its end waits for calls, which use the others
};

} // namespace Host
