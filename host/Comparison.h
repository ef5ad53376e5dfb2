/// What has changed between two runs.
#pragma once

#include "host/Addresses.h"
#include "host/RunResult.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Host {

/// The result of a run that was kept as JSON.
struct EarlierResult {
    std::string name; ///< of the file
    std::vector<Printer> printers;
    bool interrupted = false;
};

/// Reads a document of `jsonText`. Throws `UsageError` that begins with `name` when it is something else.
EarlierResult parseEarlierResult(const std::string& text, const std::string& name);

/// As `parseEarlierResult` with the file at `path`. Throws `UsageError` also when it cannot be read.
EarlierResult readEarlierResult(const std::string& path);

/// A printer that both runs have found.
struct PrinterPair {
    Printer before;
    Printer now;
};

/// A printer may be both in `moved` and in `changed`. All lists are by ascending address, of pairs the present one.
struct Comparison {
    std::vector<Printer> added;
    std::vector<Printer> gone;
    std::vector<PrinterPair> moved;   ///< at another address
    std::vector<PrinterPair> changed; ///< with another name, serial number, MAC address or host name
    std::size_t same = 0;             ///< neither moved nor changed
};

/// A printer is known by its serial number; if one of the runs has none of it, by a MAC address; if there is none in
/// one of them either, by its address. Where several share one, the address decides between them. A host name counts
/// as changed only if both runs have one. An earlier printer is gone only if its address is one of those that were
/// swept, `swept`, and the present run was not interrupted.
Comparison compare(const std::vector<Printer>& before, const RunResult& now, const AddressRanges& swept);

/// The members that differ, of those that count: "name", "sn", "mac", "hostname".
struct Difference {
    const char* member;
    std::string before;
    std::string now;
};

std::vector<Difference> differencesOf(const PrinterPair& pair);

} // namespace Host
