/// What became of the addresses of a run, in words.
#pragma once

#include "host/PluginReply.h"
#include "host/RunOutcomes.h"

#include <string>
#include <vector>

namespace Host {

/// "254 addresses: 3 printers, 12 other devices answered, 1 failed, 2 wrong credentials, 236 silent"; what did not
/// occur is left out.
std::string countsText(const OutcomeCounts& counts);

/// What a run used, as far as it bears on why nothing was found.
struct RunUse {
    int port = 161;
    bool communities = false; ///< SNMPv1 or v2c
    bool users = false;       ///< SNMPv3
};

/// What runs with these profiles (members "snmpProfile" of start requests, at least one) use.
RunUse useOf(const std::vector<JsonValue>& profiles);

/// What to try when a run over all its addresses has found no printer, a sentence or two for each kind of outcome that
/// it met, most telling first; nothing when it has found one.
std::vector<std::string> adviceFor(const OutcomeCounts& counts, const RunUse& use);

} // namespace Host
