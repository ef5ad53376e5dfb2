/// Tells that the machine cannot give what the task limit asks for.
#pragma once

#include <iosfwd>

namespace Host {

/// Writes a line when the limit in force has been lowered. Requires a plug-in that has been initialised, since that
/// puts the settings in force.
void noteLoweredTaskLimit(std::ostream& output);

} // namespace Host
