/// The whole plug-in behind its entry points, on the framework's own services, task queue and SNMP engine, with only
/// the outside faked: sockets, threads, clock. Short verbs for what a host does.
#pragma once

#include "Network.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <string>

namespace Faults {

/// Whether `condition` comes to hold; the wait is bounded against hangs only.
bool eventually(const std::function<bool()>& condition);

class WithWorld : public testing::Test {
protected:
    static constexpr auto success = R"({"success":true})";
    static constexpr std::uint32_t firstAddress = 0x0A000001; ///< 10.0.0.1

    /// Builds the plug-in and starts its service.
    WithWorld();

    /// Stops it and expects that nothing is left behind: no task, no socket.
    ~WithWorld() override;

    static std::string init(const std::string& dataStore = {});

    /// The reply, in the host's hands. What leaves the entry point passes.
    static std::string call(const std::string& operation, const std::string& params = "{}");

    /// The parameters of a start over the first `addresses` addresses from 10.0.0.1.
    static std::string runOf(const std::string& cookie, int addresses, int version = 2);
    static std::string ask(const std::string& cookie, int firstIdx = 0);

    static std::string start(const std::string& cookie, int addresses)
    {
        return call("startDiscovery", runOf(cookie, addresses));
    }
    static std::string stop(const std::string& cookie) { return call("stopDiscovery", ask(cookie)); }
    static nlohmann::json status(const std::string& cookie);

    /// Polls until the run has finished; its last status, with the printers sorted by address.
    static nlohmann::json finish(const std::string& cookie);

    /// What `finish` gives for a run that nothing disturbed.
    static nlohmann::json complete(const std::string& cookie, int addresses);
    static nlohmann::json unknown(const std::string& cookie);

    /// Whether the task queue comes to have nothing left to do.
    static bool drains();

    /// Expects that a plug-in to which something happened is as good as new: calls get through, also from another
    /// thread, the work drains, and the service stops, starts and does a whole run.
    static void expectSound();
};

} // namespace Faults
