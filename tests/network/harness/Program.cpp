#include "tests/network/harness/Program.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace NetworkTests {
namespace {

/// The octets of an address, which compare as addresses do.
std::vector<int> octetsOf(const Document& printer)
{
    std::istringstream text(printer.at("ip").get<std::string>());
    std::vector<int> octets;
    for (std::string octet; std::getline(text, octet, '.');) {
        octets.push_back(std::stoi(octet));
    }
    return octets;
}

} // namespace

std::string builtProgram(const std::string& name)
{
    const char* const chosen = std::getenv("PRINTER_DISCOVERY_PROGRAMS");
    // The test programs stand in a folder of their own below the build folder.
    const fs::path folder =
        chosen != nullptr ? fs::path(chosen) : fs::read_symlink("/proc/self/exe").parent_path().parent_path();
    const fs::path program = folder / name;
    if (!fs::exists(program)) {
        throw std::runtime_error(program.string() + " has not been built");
    }
    return program.string();
}

Document printerRecord(const std::string& address, const std::string& name, const Document& macs,
                       const std::string& serialNumber, const std::string& hostName)
{
    Document record = Document::object();
    record["hostname"] = hostName;
    record["ip"] = address;
    record["mac"] = macs;
    record["name"] = name;
    record["sn"] = serialNumber;
    return record;
}

Document finishedSweep(int total, std::vector<Document> printers)
{
    std::sort(printers.begin(), printers.end(),
              [](const Document& left, const Document& right) { return octetsOf(left) < octetsOf(right); });
    Document document = Document::object();
    document["step"] = total;
    document["total"] = total;
    document["state"] = 1;
    document["printers"] = printers;
    return document;
}

Command discoverCommand(const Sweep& sweep, const fs::path& store)
{
    std::vector<std::string> words = {builtProgram("printer-discovery"), "discover"};
    words.insert(words.end(), sweep.arguments.begin(), sweep.arguments.end());
    words.insert(words.end(), {"--format", "json", "--data-store", store});
    if (!sweep.names) {
        words.emplace_back("--no-names");
    }
    return {.words = words, .environment = sweep.environment, .network = sweep.network};
}

Document discover(const Sweep& sweep)
{
    const TemporaryFolder folder;
    const Finished result = run(discoverCommand(sweep, folder / "settings.db"), sweepBound);
    if (result.status != 0) {
        throw std::runtime_error("discover ended with status " + std::to_string(result.status) + "\n" + result.output +
                                 result.errors);
    }
    return parseOutput(result.output);
}

Document parseOutput(const std::string& output)
{
    try {
        return Document::parse(output);
    } catch (const Document::exception& error) {
        throw std::runtime_error("no document: " + std::string(error.what()) + "\n" + output);
    }
}

} // namespace NetworkTests
