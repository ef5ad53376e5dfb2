/// How many files and sockets the process may have open.
#pragma once

namespace Kep {

/// Raises the limit as far as the process may on its own. Where that fails, it stays as it is. Any thread.
void raiseDescriptorLimit() noexcept;

} // namespace Kep
