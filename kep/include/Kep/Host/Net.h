/// IPv4 addresses for hosting programs: `Kep::Net::parseIpAddress` and `formatIpAddress` as plug-ins have them.
#pragma once

#include "Kep/Net.h" // IWYU pragma: export
