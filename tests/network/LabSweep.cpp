/// Sweeps of the lab's default network, and of its profiles when another agent serves them.
#include "tests/network/harness/Lab.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Recording.h"
#include "tests/network/harness/Snmpsim.h"

#include <gtest/gtest.h>

#include <map>

using namespace NetworkTests;
namespace fs = std::filesystem;

namespace {

constexpr char profileFolder[] = PROFILE_FOLDER;

class LabSweep : public testing::Test {
protected:
    static Document sweep(const SnmpProfile& profile, std::uint16_t port, const std::string& patience)
    {
        Sweep sweep{.arguments = {ownNetwork() + ".0/24", "--port", std::to_string(port), "-t", patience}};
        const std::vector<std::string> options = profile.options();
        sweep.arguments.insert(sweep.arguments.end(), options.begin(), options.end());
        return discover(sweep);
    }

    static std::vector<LabDevice> list(Individuality individuality)
    {
        return Lab::list(ownNetwork() + ".0/24", individuality);
    }

    static Document printersOf(const std::vector<LabDevice>& devices)
    {
        std::vector<Document> printers;
        for (const LabDevice& device : devices) {
            if (!device.printer.is_null()) {
                printers.push_back(device.printer);
            }
        }
        return finishedSweep(254, printers);
    }

    static fs::path fileOf(const LabDevice& device) { return fs::path(profileFolder) / (device.profile + ".snmprec"); }
};

TEST_F(LabSweep, FindsWhatTheLabLists)
{
    const std::vector<LabDevice> devices = list(Individuality::byAddress);
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab(ownNetwork() + ".0/24", port);
    EXPECT_EQ(sweep(v1(), port, "2"), printersOf(devices));
    EXPECT_EQ(sweep(v2c(), port, "2"), printersOf(devices));
}

TEST_F(LabSweep, ListAgreesWithTheProfiles)
{
    int printers = 0;
    const std::vector<LabDevice> devices = list(Individuality::verbatim);
    for (const LabDevice& device : devices) {
        const Recording profile(fileOf(device));
        printers += profile.isPrinter() ? 1 : 0;
        EXPECT_EQ(device.printer, profile.isPrinter() ? profile.record(device.address) : Document()) << device.profile;
    }
    EXPECT_GE(printers, 8);
    EXPECT_GT(devices.size(), static_cast<std::size_t>(printers)) << "devices that are no printers belong to the lab";
}

TEST_F(LabSweep, ProfilesServedByAnotherAgentGiveTheSame)
{
    const std::vector<LabDevice> devices = list(Individuality::verbatim);
    std::map<std::string, fs::path> served;
    std::vector<std::string> addresses;
    for (const LabDevice& device : devices) {
        served[device.address] = fileOf(device);
        addresses.push_back(device.address);
    }
    const std::uint16_t port = freeUdpPort(addresses);
    const Snmpsim simulator(served, port);
    // One interpreter plays all devices, so it may be slow when all are asked at once.
    EXPECT_EQ(sweep(v2c(), port, "10"), printersOf(devices));
}

} // namespace
