/// What a run has to report at one moment.
#pragma once

#include "documents/PrinterRecord.h"

#include <cstdint>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

struct DiscoveryStatus {
    /// Values of `state`.
    static constexpr std::uint32_t finished = 1; ///< no work is pending, or there is no such run
    static constexpr std::uint32_t running = 2;  ///< work is pending

    /// Addresses probed so far.
    std::uint32_t step = 0;
    /// Addresses to probe in all.
    std::uint32_t total = 0;
    std::uint32_t state = finished;
    /// In the order found.
    std::vector<PrinterRecord> printers;
    /// The text by which the caller knows the run.
    std::string cookie;
};

} // namespace PrinterDiscoveryPlugin
