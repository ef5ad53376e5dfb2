/// Targets and excludes as people write them into a form.
#pragma once

#include "host/Addresses.h"

#include <functional>
#include <string>

namespace Host {

/// Addresses that one run may probe: what becomes of each is remembered.
constexpr std::uint64_t MostAddresses = std::uint64_t{1} << 24U;

/// The networks of this machine's interfaces, of which `@local` speaks.
using LocalNetworks = std::function<AddressRanges()>;

/// The addresses of `targets` less those of `exclude`, as `planTargets` gives them. Both texts are targets as on the
/// command line, separated by commas, blanks and line ends; # and what follows it on a line is a comment. Throws
/// `HttpError` with status 400 and the field that is at fault, also when nothing is left to probe or more than
/// `MostAddresses` are.
AddressRanges planOf(const std::string& targets, const std::string& exclude, const LocalNetworks& localNetworks);

} // namespace Host
