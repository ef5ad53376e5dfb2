/// The command line in UTF-8.
#pragma once

#include <string>
#include <vector>

namespace Lab {

/// What follows the program's name in `main`'s arguments.
std::vector<std::string> programArguments(int count, char** arguments);

} // namespace Lab
