#include "tests/unit/support/Environment.h"

#include <cstdlib>

namespace TestSupport {

void setVariable(const std::string& name, const std::string& value)
{
    ::setenv(name.c_str(), value.c_str(), 1);
}

} // namespace TestSupport
