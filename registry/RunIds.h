/// The numbers of runs.
#pragma once

#include "engine/PdExecutor.h"

#include <cstdint>
#include <map>
#include <memory>

namespace PrinterDiscoveryPlugin {

/// The live runs by id, in ascending order of the signed ids.
using RunMap = std::map<std::int32_t, std::shared_ptr<PdExecutor>>;

/// The id after `lastId` that no run of `runs` has; after the largest 32-bit number follows the smallest. Pure; throws
/// nothing. At least one id must be free.
std::int32_t nextRunId(std::int32_t lastId, const RunMap& runs) noexcept;

} // namespace PrinterDiscoveryPlugin
