/// How the program ends, as scripts see it.
#pragma once

namespace Host {

enum class ExitCode : int {
    Done = 0,          ///< finished; finding nothing is finished too
    Failed = 1,        ///< what was asked could not be done
    Usage = 2,         ///< the command line is wrong; nothing was sent
    Interrupted = 130, ///< ended by the user or by a signal to terminate
};

} // namespace Host
