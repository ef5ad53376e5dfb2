#include "tests/network/HostileNames.h"

#include "lab/hostile/HostileProfiles.h"

namespace NetworkTests {

std::vector<std::string> hostileNames()
{
    std::vector<std::string> names;
    for (const auto& [name, profile] : ::Lab::hostileProfiles()) {
        names.push_back(name);
    }
    return names;
}

} // namespace NetworkTests
