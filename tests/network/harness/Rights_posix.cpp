#include "tests/network/harness/Rights.h"

#include <cstdlib>

#include <unistd.h>

namespace NetworkTests {

bool nothingSkips()
{
    return environment("CI") == "true";
}

bool isRoot()
{
    return geteuid() == 0;
}

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace NetworkTests
