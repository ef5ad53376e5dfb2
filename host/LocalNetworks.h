/// The networks that this machine is connected to.
#pragma once

#include "host/Addresses.h"

namespace Host {

/// The IPv4 networks of the interfaces that are up, loopback left out. Throws `Failure` when the system does not tell.
AddressRanges localNetworks();

} // namespace Host
