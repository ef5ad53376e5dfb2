// Loading and unloading of the library, in and out of runs.
#include "entry/Host.h"
#include "unit/support/ProcessUse.h"

#include <optional>

using nlohmann::json;
using testing::UnorderedElementsAre;

namespace {

constexpr int silentHosts = 200;

/// Less than a plug-in object takes. AddressSanitizer's runtime keeps a record of each destructor that a library
/// registers for the process's end, and keeps it when the library goes; what we leave, LeakSanitizer reports.
std::size_t mostBytesOfALoad()
{
    return TestSupport::isSanitized() ? 512 : 64;
}

class Loading : public WithHost {
protected:
    // Hosts that do not answer, and at last an address that is refused at once: when that has been counted, the probes
    // of all others are waiting.
    json silentSweep() const
    {
        return startParameters("c", "127.20.0.1", "127.20.0." + std::to_string(silentHosts + 1), hosts.port());
    }

    void startSilentSweep() const
    {
        EXPECT_EQ(call("startDiscovery", silentSweep().dump()), success);
        while (json::parse(status("c")).at("step") == 0)
            continue;
        EXPECT_EQ(json::parse(status("c")).at("state"), 2);
    }

    std::optional<int> runAndExit(const json& params) const
    {
        return System::run({PD_RUN_AND_EXIT, PD_LIBRARY, slowConfiguration(), params.dump()}, 60);
    }

    std::string slowConfiguration() const { return configurationOf(dataStore(), "1.5"); }

    const System::SilentHosts hosts{silentHosts};
};

TEST(Exports, AreTheThreeEntryPointsAndNothingElse)
{
    EXPECT_THAT(System::exportedNames(PD_LIBRARY),
                UnorderedElementsAre("dakPluginInit", "dakPluginCall", "dakPluginDeinit"));
}

TEST_F(Loading, UnloadingTakesTheLibraryOutOfTheProcess)
{
    EXPECT_TRUE(driverIsLoaded(PD_LIBRARY));
    unload();
    EXPECT_TRUE(System::isGone(PD_LIBRARY));
}

TEST_F(Loading, AnUsedLibraryIsUnloadedToo)
{
    init();
    EXPECT_EQ(start("c", "127.20.0.1", "127.20.0.9", System::closedPort()), success);
    finish("c");
    driver.deinit();
    unload();
    EXPECT_TRUE(System::isGone(PD_LIBRARY));
}

TEST_F(Loading, EachLoadBuildsANewPlugin)
{
    const std::uint16_t port = System::closedPort();
    init();
    start("c", "127.20.0.1", "127.20.0.1", port);
    unload();
    EXPECT_TRUE(System::isGone(PD_LIBRARY));
    load();
    EXPECT_EQ(status("c"), refusal("getPdExecutor")) << "the service of a new plug-in is not started";
    init();
    start("d", "127.20.0.1", "127.20.0.1", port);
    EXPECT_EQ(status("c"), unknownStatus("c")) << "cookies end with the library";
}

TEST_F(Loading, AHundredLoadsLeaveNothingBehind)
{
    const auto cycle = [this] {
        if (driver.handle == nullptr)
            load();
        init();
        EXPECT_EQ(status("c"), unknownStatus("c"));
        driver.deinit();
        unload();
        EXPECT_TRUE(System::isGone(PD_LIBRARY));
    };
    for (int n = 0; n < 10; ++n)
        cycle();
    const std::size_t descriptors = TestSupport::openDescriptors();
    const std::size_t bytes = TestSupport::allocatedBytes();
    for (int n = 0; n < 100; ++n)
        cycle();
    EXPECT_EQ(TestSupport::openDescriptors(), descriptors);
    EXPECT_LE(TestSupport::allocatedBytes(), bytes + 100 * mostBytesOfALoad());
}

TEST_F(Loading, ALoadWithoutInitLeavesNothingBehindEither)
{
    unload();
    for (int n = 0; n < 20; ++n) {
        load();
        unload();
        EXPECT_TRUE(System::isGone(PD_LIBRARY));
    }
}

TEST_F(Loading, UnloadingInMidRunEndsTheRunFirst)
{
    for (int n = 0; n < 3; ++n) {
        if (driver.handle == nullptr)
            load();
        init(slowConfiguration());
        startSilentSweep();
        unload();
        EXPECT_TRUE(System::isGone(PD_LIBRARY));
    }
}

TEST_F(Loading, DeinitInMidRunEndsTheRun)
{
    init(slowConfiguration());
    startSilentSweep();
    driver.deinit();
    EXPECT_EQ(status("c"), refusal("getPdExecutor"));
}

TEST_F(Loading, AProcessMayExitInMidRun)
{
    for (int n = 0; n < 3; ++n)
        EXPECT_EQ(runAndExit(silentSweep()), 0);
}

TEST_F(Loading, AProcessMayExitInMidRunOfVersion3)
{
    json params = silentSweep();
    params["config"]["snmpProfile"] = {{"snmpVersion", 3},
                                       {"snmpPort", hosts.port()},
                                       {"usm", "user"},
                                       {"authProtocol", "SHA1"},
                                       {"authPwd", "not a secret"},
                                       {"privacyProtocol", "AES128"},
                                       {"privacyPwd", "not either"},
                                       {"context", ""}};
    EXPECT_EQ(runAndExit(params), 0);
}

} // namespace
