/// The tasks of a run as the host's queue gets them.
#pragma once

#include "engine/ITaskBinding.h"

namespace PrinterDiscoveryPlugin {

/// Makes tasks with default options, described as "PrinterDiscovery: " and their item. Their run callbacks always
/// return true and pass on what the work throws; their finish callbacks take the task off the run's pending list.
/// Throws `std::bad_alloc`, and `std::length_error` for a description that no string can hold.
class TaskBinding final : public ITaskBinding {
public:
    /// "Test IP"; the item is the address.
    std::shared_ptr<Kep::Tasks::Task> testIp(PdExecutor& run, const std::string& address) const override;

    /// "Test IP ranges"; the item is from, "-", to and "," of each range.
    std::shared_ptr<Kep::Tasks::Task> testIpRanges(PdExecutor& run,
                                                   const std::vector<IpRangeText>& ranges) const override;
};

} // namespace PrinterDiscoveryPlugin
