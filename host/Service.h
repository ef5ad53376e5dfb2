/// The names by which the plug-in's service is called.
#pragma once

namespace Host {

constexpr const char* ServiceName = "PrinterDiscovery";
constexpr const char* StartOperation = "startDiscovery";
constexpr const char* BlockingStartOperation = "startDiscoveryBlocking";
constexpr const char* StopOperation = "stopDiscovery";
constexpr const char* StatusOperation = "getStatus";

} // namespace Host
