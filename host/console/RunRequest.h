/// What a client of the console wants to have swept.
#pragma once

#include "host/console/JsonBody.h"
#include "host/console/TargetTexts.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Host {

constexpr int SnmpPort = 161;

/// Checked. The texts are as they were written.
struct RunRequest {
    std::string name;
    std::string targets;
    std::string exclude;
    int port = SnmpPort;
    AddressRanges ranges;                 ///< to sweep
    std::uint64_t addresses = 0;          ///< to probe in them
    std::vector<JsonValue> profiles;      ///< members "snmpProfile", with their secrets; a sweep with each
    std::vector<std::string> credentials; ///< the same in words, without secrets: "v2c", "v3 user admin"
    bool confirmed = false;               ///< the client knows how many addresses they are
    std::string schedule;                 ///< id of the one that asks for it, if one does
};

constexpr std::size_t MostCredentialsOfRun = 16;

/// From so many addresses on, a run has to be confirmed.
constexpr std::uint64_t ConfirmFrom = 65536;

/// Reads the members of a run from `body`, and leaves others to whoever reads them. Throws `HttpError` with status 400
/// that names the field at fault.
RunRequest readRunRequest(JsonBody& body, const LocalNetworks& localNetworks);

/// Throws `HttpError` with status 409 when the run is a large one and not confirmed.
void requireConfirmed(const RunRequest& request);

} // namespace Host
