/// The programs under test, and the documents that they print.
#pragma once

#include "tests/network/harness/ChildProcess.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace NetworkTests {

/// JSON whose members keep their order, and are compared in it.
using Document = nlohmann::ordered_json;

/// Against hangs only; no sweep of these tests comes near it.
constexpr std::chrono::seconds sweepBound(120);

/// A program that stands in the build folder, or in the one that PRINTER_DISCOVERY_PROGRAMS names.
std::string builtProgram(const std::string& name);

/// One printer as a document shows it.
Document printerRecord(const std::string& address, const std::string& name, const Document& macs,
                       const std::string& serialNumber, const std::string& hostName = "");

/// A finished sweep of `total` addresses that found `printers`, which are put in the order of their addresses.
Document finishedSweep(int total, std::vector<Document> printers);

/// One call of `printer-discovery discover`.
struct Sweep {
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment = {};
    bool names = false; ///< whether host names are looked up
    const TestNetwork* network = nullptr;
};

/// The command of a sweep that prints JSON and has a data store of its own, `store`, which need not exist.
Command discoverCommand(const Sweep& sweep, const std::filesystem::path& store);

/// Runs a sweep, which must end with status 0, and gives its document. Throws `std::runtime_error` with all that the
/// program printed when it does not.
Document discover(const Sweep& sweep);

/// The document that a program has printed as its whole output. Throws `std::runtime_error` when that is none.
Document parseOutput(const std::string& output);

} // namespace NetworkTests
