/// Sweeps of recorded devices that the SNMP simulator serves. The folder of recordings is named by the environment
/// variable PRINTER_DISCOVERY_RECORDINGS.
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Recording.h"
#include "tests/network/harness/Rights.h"
#include "tests/network/harness/Snmpsim.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <memory>

using namespace NetworkTests;
namespace fs = std::filesystem;

namespace {

class RecordingSweep : public testing::TestWithParam<SnmpProfile> {
protected:
    void SetUp() override
    {
        const std::string folder = environment("PRINTER_DISCOVERY_RECORDINGS");
        if (folder.empty()) {
            GTEST_SKIP() << "recorded devices: PRINTER_DISCOVERY_RECORDINGS names no folder";
        }
        SKIP_UNLESS(fs::is_directory(folder), "recorded devices: there is no folder " + folder);
        place(recordingsIn(folder));
    }

    /// Gives each device an address and reads from its recording what a sweep must say of it.
    void place(const std::vector<fs::path>& files)
    {
        ASSERT_GE(files.size(), 1U);
        ASSERT_LE(files.size(), 250U) << "one network has no room for them";
        for (const fs::path& file : files) {
            const std::string address = ownAddress(static_cast<int>(devices_.size()) + 1);
            devices_[address] = file;
            const Recording recording(file);
            if (recording.isPrinter()) {
                printers_.push_back(recording.record(address));
            }
        }
    }

    std::vector<std::string> addresses() const
    {
        std::vector<std::string> result;
        for (const auto& [address, file] : devices_) {
            result.push_back(address);
        }
        return result;
    }

    Document sweepWith(const SnmpProfile& profile, std::uint16_t port) const
    {
        const int count = static_cast<int>(devices_.size());
        // One interpreter plays all devices, so it may be slow when all are asked at once.
        Sweep sweep{.arguments = {ownAddress(1) + "-" + ownAddress(count), "--port", std::to_string(port), "-t", "10",
                                  "-r", "2"}};
        const std::vector<std::string> options = Snmpsim::reaching(profile).options();
        sweep.arguments.insert(sweep.arguments.end(), options.begin(), options.end());
        return discover(sweep);
    }

    Document exactlyThePrinters() const { return finishedSweep(static_cast<int>(devices_.size()), printers_); }

    std::map<std::string, fs::path> devices_;
    std::vector<Document> printers_;
};

TEST_P(RecordingSweep, FindsExactlyThePrintersAndWhatTheirRecordingsSay)
{
    const std::uint16_t port = freeUdpPort(addresses());
    const Snmpsim simulator(devices_, port, {GetParam()});
    std::cout << devices_.size() << " recorded devices, " << printers_.size() << " of them printers\n";
    EXPECT_EQ(sweepWith(GetParam(), port), exactlyThePrinters());
}

INSTANTIATE_TEST_SUITE_P(Profiles, RecordingSweep, testing::ValuesIn(commonProfiles()),
                         testing::PrintToStringParamName());

} // namespace
