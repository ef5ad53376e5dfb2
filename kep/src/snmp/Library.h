/// The SNMP library: its headers, the one lock that guards it, and its initialisation.
///
/// The library codes and checks messages; it does no traffic of its own. It keeps process-wide state and is not
/// re-entrant, so every call of it is made with `libraryMutex` held, and nothing waits while it is held.
#pragma once

#include "Kep/Mutex.h"

// The order is the library's: its configuration comes first.
// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/library/large_fd_set.h>
#include <net-snmp/library/lcd_time.h>
#include <net-snmp/library/snmp_logging.h>
#include <net-snmp/library/snmp_secmod.h>
#include <net-snmp/library/snmp_transport.h>
#include <net-snmp/library/snmpusm.h>
#include <net-snmp/library/transform_oids.h>
// clang-format on

namespace Kep::Snmp {

inline Mutex libraryMutex;

/// Initialises the library on the first call and does nothing on later ones. It loads no MIB, reads no
/// configuration, keeps no files, and logs nowhere. Throws `Exception` when it cannot be initialised.
void initialiseLibrary() KEP_EXCLUDES(libraryMutex);

} // namespace Kep::Snmp
