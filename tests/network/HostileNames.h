/// What the lab can be told to play.
#pragma once

#include <string>
#include <vector>

namespace NetworkTests {

/// The names of its hostile profiles, in their order.
std::vector<std::string> hostileNames();

} // namespace NetworkTests
