/// The plug-in as the commands see it: texts in, texts out.
#pragma once

#include "Kep/Host/Call.h"

#include <functional>
#include <string>

namespace Host {

struct PluginCall {
    std::string service;
    std::string operation;
    std::string params; ///< JSON text
};

class IPluginCalls {
public:
    /// Told the id of the work that a call is about to cause, on the calling thread, before the plug-in is entered.
    using Entering = std::function<void(Kep::Host::CallId)>;

    virtual ~IPluginCalls() = default;

    /// Calls an operation and gives back its reply, JSON text; a failed call's reply is an error document
    /// (PluginReply.h). `entering` may be empty. Any thread, any number at once. Throws `Failure` when there is no
    /// reply.
    virtual std::string call(const PluginCall& call, const Entering& entering) = 0;

    /// Lets work that the call still has waiting end without being done. Any thread; returns at once.
    virtual void withdraw(Kep::Host::CallId work) = 0;
};

} // namespace Host
