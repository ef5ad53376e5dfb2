/// Cuts one slice of work off a list of address ranges.
///
/// A pure function but for the calls of `queue`; any thread, no locks.
#pragma once

#include "documents/DiscoveryConfig.h"
#include "documents/IpRange.h"

#include <functional>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {

/// Hands addresses of `ranges`, ascending within a range and ranges in list order, to `queue` as dotted texts until
/// `limit` have been handed on, and returns what is left, in order.
///
/// An address whose last octet is 0 or 255 is passed over. A range's last address is still handed on when the limit
/// has just been reached, so that no range of one address is left over: up to `limit` + 1 calls. Ranges after the
/// limit are left as they are, whatever their bounds; before it, one whose bounds are reversed is dropped. A range
/// that ends at 255.255.255.255 has no end: it goes on from 0.0.0.0 until the limit.
///
/// What `queue` throws passes.
std::vector<IpRangeText> queueSlice(const std::vector<IpRange>& ranges, int limit,
                                    const std::function<void(const std::string&)>& queue);

} // namespace PrinterDiscoveryPlugin
