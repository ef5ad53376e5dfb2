/// Which run each caller's cookie stands for.
#pragma once

#include "Kep/Mutex.h"

#include <cstdint>
#include <map>
#include <string>

namespace PrinterDiscoveryPlugin {

/// Cookies are compared bytewise; each names at most one run, by the id under which the registry in force holds it.
/// Any thread. The mutex is the first that the plug-in takes: a registry's and a run's may be taken under it.
struct CookieTable {
    Kep::Mutex mutex;
    std::map<std::string, std::int32_t> runs KEP_GUARDED_BY(mutex);
};

/// The one table of the process. It outlives registries: a cookie that nobody collected before a restart of the
/// service stays, and may then name a run of the new registry. Lives until the library's static objects end.
CookieTable& cookieTable();

} // namespace PrinterDiscoveryPlugin
