/// Names that nobody else has chosen.
#pragma once

#include <string>

namespace Host {

/// Sixteen hexadecimal digits that the system made by chance. Throws `std::exception` when it cannot.
std::string randomId();

} // namespace Host
