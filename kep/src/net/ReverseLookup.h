/// The names that the system's name service configuration has for addresses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Kep::Net {

/// The name of `address` (first octet in the most significant byte) by the hosts file and the name servers, in the
/// configured order, within 2 s in all; empty when there is none. `servers` ("address:port", comma-separated) are
/// asked in place of the configured ones unless empty. Blocks the caller. Any thread, no lock. Throws
/// `GenericException` when the resolver cannot be set up.
std::string reverseLookup(std::uint32_t address, const std::string& servers = {});

/// `answer` as the name of a host, without the dot at its end; empty when it can be none: longer than 255 bytes, or
/// with blanks or control characters.
std::string hostNameFrom(std::string_view answer);

} // namespace Kep::Net
