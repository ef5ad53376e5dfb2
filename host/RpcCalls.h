/// Calls into the plug-in that JSON-RPC messages ask for, and their answers.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/IPluginCalls.h"
#include "host/JsonRpc.h"

#include <set>
#include <string>

namespace Host {

/// The call that a request means. Throws `RpcError` when its method is none of the plug-in's service.
PluginCall pluginCallOf(const RpcRequest& request);

/// Any thread.
class RpcCalls {
public:
    /// Keeps the reference.
    explicit RpcCalls(IPluginCalls& plugin);

    /// Carries the call out, as long as that takes, and gives the answer to the request with `id`.
    std::string carryOut(const PluginCall& call, const std::string& id);

    /// Withdraws the work of the calls under way, so that blocking starts return, and that of calls to come.
    void withdrawAll();

private:
    void enter(Kep::Host::CallId work);
    void leave(Kep::Host::CallId work);

    IPluginCalls& plugin_;

    Kep::Mutex mutex_;
    std::set<Kep::Host::CallId> work_ KEP_GUARDED_BY(mutex_); ///< of the calls inside the plug-in
    bool withdrawing_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace Host
