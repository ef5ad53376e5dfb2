/// IPv4 addresses as text and number, and the names of hosts.
///
/// An address is a number whose most significant byte (of the low 32 bits) is the first dotted octet: a.b.c.d is
/// a*2^24 + b*2^16 + c*2^8 + d. All functions may be called from any thread at once and hold no lock while they wait.
#pragma once

#include "Kep/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Kep::Net {

/// Reads a strict dotted quad: four decimal numbers of 0 to 255 without signs, blanks or superfluous leading zeros,
/// and nothing else. True when `text` is one, and `address` then holds its value; otherwise false, and `address`
/// is left as it was. Throws nothing.
KEP_API bool parseIpAddress(std::string_view text, unsigned long& address);

/// The dotted quad of `address`. Throws only `std::bad_alloc`.
KEP_API std::string formatIpAddress(std::uint32_t address);

/// The NetBIOS machine name of the host at `address`, asked with a node status request (RFC 1002, section 4.2.17)
/// over UDP port 137: 2 tries of 0.5 s each, ended at once by a closed port. Empty when there is none, and when the
/// setting "host.names.netbios" is off. The name comes without its padding; bytes are as the host sent them. Blocks
/// the caller. Throws `GenericException` when no socket is to be had.
KEP_API std::string ipToHostNameNetbios(unsigned long address);

/// The name that the system's name service configuration (hosts file, name servers) has for `address`, by reverse
/// look-up (RFC 1035, section 3.5): at most 2 s in all. Empty when there is none, and when the setting
/// "host.names.dns" is off. Blocks the caller. Throws `GenericException` when the resolver cannot be set up.
KEP_API std::string ipToHostNameDns(unsigned long address);

} // namespace Kep::Net
