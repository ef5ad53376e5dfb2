/// The C host of docs/embedding.md on devices of the lab.
#include "tests/network/harness/Lab.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <sstream>

using namespace NetworkTests;

namespace {

class Embedding : public testing::Test {
protected:
    static Finished host(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> words = {builtProgram("tests/embedding")};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return run({.words = words}, sweepBound);
    }

    /// The plug-in that was built, or the one that PRINTER_DISCOVERY_PLUGIN names.
    static std::string library()
    {
        const char* const chosen = std::getenv("PRINTER_DISCOVERY_PLUGIN");
        return chosen != nullptr ? chosen : PLUGIN_LIBRARY;
    }

    static Finished sweep(const std::string& from, const std::string& to, std::uint16_t port,
                          const std::string& community = "public")
    {
        return host({library(), from, to, std::to_string(port), community});
    }

    static std::multiset<std::string> lines(const std::string& output)
    {
        std::istringstream text(output);
        std::multiset<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            if (line.ends_with('\r')) // of the host for Windows
                line.pop_back();
            lines.insert(line);
        }
        return lines;
    }

    /// What the host prints of the printers among some devices.
    static std::multiset<std::string> printersOf(const std::vector<LabDevice>& devices)
    {
        std::multiset<std::string> lines;
        for (const LabDevice& device : devices)
            if (!device.printer.is_null())
                lines.insert(device.address + "\t" + device.printer.at("name").get<std::string>() + "\t" +
                             device.printer.at("sn").get<std::string>());
        return lines;
    }
};

TEST_F(Embedding, PrintsThePrintersOfTheRange)
{
    const LabPlan plan = {{ownAddress(3), "laser-mono"}, {ownAddress(9), "server"}, {ownAddress(20), "laser-latin1"}};
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab(plan, port);
    const Finished result = sweep(ownAddress(1), ownAddress(40), port);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(lines(result.output), printersOf(Lab::list(plan)));
    EXPECT_EQ(result.errors, "");
}

TEST_F(Embedding, AsksForNoAddressOutsideOfTheRange)
{
    const LabPlan plan = {{ownAddress(3), "laser-mono"}, {ownAddress(5), "laser-mono"}};
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab(plan, port);
    const Finished result = sweep(ownAddress(1), ownAddress(4), port);
    EXPECT_EQ(lines(result.output).size(), 1U) << result.output;
}

TEST_F(Embedding, SaysWhatThePluginSaysOfAnError)
{
    const Finished result = sweep(ownAddress(1), ownAddress(1), 161, "\xff");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.find("startDiscovery: malformed JSON"), 0U) << result.errors;
}

TEST_F(Embedding, QuotesACommunityForJson)
{
    const Finished result = sweep("127.0.0.0", "127.0.0.0", 161, "quote\" backslash\\ bell\a");
    EXPECT_EQ(result.status, 0) << result.errors;
}

TEST_F(Embedding, RefusesRangesThatAreNone)
{
    for (const auto& [from, to] : std::map<std::string, std::string>{
             {"10.0.0.9", "10.0.0.1"}, {"10.0.0", "10.0.0.1"}, {"10.0.0.1", "10.0.0.256"}, {"-1.0.0.1", "1.0.0.1"}})
        EXPECT_EQ(sweep(from, to, 161).status, 2) << from << " " << to;
}

TEST_F(Embedding, SaysThatALibraryIsMissing)
{
    const Finished result = host({"/no/such/library", "10.0.0.1", "10.0.0.1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.errors.find("/no/such/library"), std::string::npos) << result.errors;
}

} // namespace
