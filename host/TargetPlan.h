/// The addresses that a command line asks to sweep.
#pragma once

#include "host/Addresses.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace Host {

/// As written, unchecked. A target is a text of Targets.h, `@local`, or `-` for a list on standard input; an exclude
/// is a text of Targets.h or `@local`. A file is a path, or `-` for standard input.
struct TargetArguments {
    std::vector<std::string> targets, files, excludes, excludeFiles;
};

/// Where targets come from besides the command line.
struct TargetSources {
    std::istream& standardInput;
    std::function<AddressRanges()> localNetworks;
};

/// The addresses of the targets less the excluded ones, `bridged`, none beyond 255.255.255.254. Lists hold targets
/// separated by blanks, tabs or line ends; # and what follows it on a line is a comment. Throws `UsageError` that names
/// the target, and for lists the file and line, when one is not accepted, when there is none at all, when standard
/// input is to be read twice, or when more than `MostRanges` ranges remain; and what `localNetworks` throws.
AddressRanges planTargets(const TargetArguments& arguments, const TargetSources& sources);

} // namespace Host
