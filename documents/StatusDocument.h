/// The JSON documents of a status and of its printers.
///
/// Pure functions: any thread, no locks. Only `std::bad_alloc` and `std::length_error` are thrown. Texts may hold any
/// bytes.
#pragma once

#include "documents/DiscoveryStatus.h"
#include "documents/PrinterRecord.h"

#include <string>

namespace PrinterDiscoveryPlugin {

/// An object of "hostname", "ip", "mac" (array of texts), "name" and "sn", in this order.
std::string printerToJson(const PrinterRecord& printer);

/// An object of "step", "total", "state", "cookie" and "printers" (array of printers), in this order. The numbers are
/// written as signed 32-bit ones, so that 2^31 and above come out negative.
std::string statusToJson(const DiscoveryStatus& status);

} // namespace PrinterDiscoveryPlugin
