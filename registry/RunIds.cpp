#include "registry/RunIds.h"

namespace PrinterDiscoveryPlugin {

std::int32_t nextRunId(std::int32_t lastId, const RunMap& runs) noexcept
{
    std::int32_t id = lastId;
    do {
        id = static_cast<std::int32_t>(static_cast<std::uint32_t>(id) + 1U);
    } while (runs.contains(id));
    return id;
}

} // namespace PrinterDiscoveryPlugin
