/// A plug-in whose stop answers soon, however large the run is, and holds up no status meanwhile.
#pragma once

#include "Kep/Host/CookieCalls.h"
#include "host/IPluginCalls.h"

#include <string>

namespace Host {

/// Left to itself, "stopDiscovery" waits for all work of the run, with the plug-in's locks held. This carries it out in
/// three steps: it withdraws the work of the call that last started the cookie, waits until that has drained, which
/// takes as long as the probes in flight, and then calls the operation. All other calls go through as they are, and so
/// does a stop whose cookie is not known or whose parameters are not readable.
class StoppingCalls : public IPluginCalls {
public:
    /// Keeps the reference. All starts of the cookies that are to be stopped go through this object.
    explicit StoppingCalls(IPluginCalls& plugin);

    /// For a stop, `entering` is told after the second step.
    std::string call(const PluginCall& call, const Entering& entering) override;
    void withdraw(Kep::Host::CallId work) override;

private:
    std::string start(const PluginCall& call, const std::string& cookie, const Entering& entering);

    IPluginCalls& plugin_;
    Kep::Host::CookieCalls calls_;
};

} // namespace Host
