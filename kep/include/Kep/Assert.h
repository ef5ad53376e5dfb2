/// Reporting of conditions that the program's own logic guarantees.
#pragma once

#include "Kep/Export.h"

namespace Kep {

/// Reports on standard error that `expression`, written at `line` of `source`, did not hold. Returns; the caller
/// goes on. The texts are NUL-terminated and not kept. Any thread; takes no lock; throws nothing.
KEP_API void assertionFailed(const char* expression, const char* source, int line) noexcept;

} // namespace Kep
