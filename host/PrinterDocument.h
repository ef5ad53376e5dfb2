/// A printer as documents have it: {"hostname":…,"ip":…,"mac":[…],"name":…,"sn":…}.
#pragma once

#include "host/PluginReply.h"
#include "host/RunResult.h"

namespace Host {

JsonValue documentOf(const Printer& printer);

/// Throws `JsonValue::exception` when a member is absent or of another kind.
Printer printerOf(const JsonValue& document);

} // namespace Host
