#include "tests/unit/support/Environment.h"

#include <cstdlib>

namespace TestSupport {

void setVariable(const std::string& name, const std::string& value)
{
    _putenv_s(name.c_str(), value.c_str());
}

} // namespace TestSupport
