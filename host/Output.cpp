#include "host/Output.h"

#include "host/Errors.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

namespace Host {

void writeOutput(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Failure("cannot write to standard output: " + std::generic_category().message(errno));
}

void reportError(const char* message)
{
    std::fprintf(stderr, "printer-discovery: %s\n", message);
}

} // namespace Host
