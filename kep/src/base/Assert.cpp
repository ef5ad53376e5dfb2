#include "Kep/Assert.h"

#include <cstdio>

namespace Kep {

void assertionFailed(const char* expression, const char* source, int line) noexcept
{
    std::fprintf(stderr, "assertion \"%s\" failed: %s, line %d\n", expression, source, line);
}

} // namespace Kep
