/// Printers as lines of JSON while a run goes on.
#pragma once

#include "host/RunResult.h"

#include <string>
#include <vector>

namespace Host {

class StreamOutput {
public:
    /// A line for each printer that has come since the last call, or of which more is known than then, as in the
    /// member "printers" of `jsonText`. The printers of a result keep their places from call to call.
    std::string newLines(const RunResult& soFar);

private:
    std::vector<Printer> written_;
};

} // namespace Host
