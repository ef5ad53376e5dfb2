/// The environment of the test's own process.
#pragma once

#include <string>

namespace TestSupport {

/// Sets a variable for the rest of the process.
void setVariable(const std::string& name, const std::string& value);

} // namespace TestSupport
