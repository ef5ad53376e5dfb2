// Memory that runs out, at each place in turn: the operation fails, and nothing else happens.
#include "Allocations.h"
#include "World.h"

#include "Kep/Json.h"
#include "Kep/Snmp/Profile.h"
#include "documents/PrinterRecord.h"
#include "engine/HostProbe.h"
#include "engine/IdentificationSettings.h"
#include "plugin/include/PrinterDiscovery.h"
#include "settings/HostSettings.h"
#include "snmp/KeyCache.h"

#include <atomic>
#include <chrono>
#include <new>
#include <optional>
#include <thread>

using nlohmann::json;

namespace Faults {
namespace {

using Extent = FailingAllocation::Extent;

constexpr std::size_t mostAllocations = 100'000; // against tests that go on for ever

// Does `work` with the first allocation failing, then the second, and so on in steps of `stride`, until none fails any
// more. `check` comes after each time, with whether one failed. How many times one did.
std::size_t atEachAllocation(const std::function<void()>& work, const std::function<void(bool struck)>& check,
                             std::size_t stride = 1, Where where = Where::thisThread, Extent extent = Extent::one)
{
    std::size_t times = 0;
    for (std::size_t nth = 1; nth < mostAllocations; nth += stride) {
        bool struck = false;
        {
            const FailingAllocation failing(where, nth, extent);
            work();
            struck = failing.struck();
        }
        check(struck);
        if (!struck || testing::Test::HasFailure())
            break;
        ++times;
    }
    return times;
}

class AllocationFailures : public WithWorld {
protected:
    // A call that may find no memory even for its error document.
    static void tryCall(const std::string& operation, const std::string& params)
    {
        try {
            call(operation, params);
        } catch (const std::bad_alloc&) { // the host's to catch
        }
    }

    static void expectSuccessOrError(const std::string& reply)
    {
        const json document = json::parse(reply);
        if (document.contains("code")) {
            EXPECT_EQ(document.at("code"), "internalServerError");
            EXPECT_EQ(document.at("message"), "std::bad_alloc");
        }
    }

    // No run of that name, or all of it.
    static void expectNothingOrAll(const std::string& cookie, int addresses)
    {
        const json found = finish(cookie);
        EXPECT_EQ(found, found.at("total") == 0 ? unknown(cookie) : complete(cookie, addresses));
    }

    // Calls an operation with each of its allocations failing, after `prepare` each time.
    static void failEachAllocationOf(const std::string& operation, const std::string& params,
                                     const std::function<void()>& prepare, const std::function<void()>& check)
    {
        std::string reply;
        prepare();
        const auto work = [&] { reply = call(operation, params); };
        const auto examine = [&](bool struck) {
            expectSuccessOrError(reply);
            EXPECT_TRUE(struck || reply.find("std::bad_alloc") == std::string::npos);
            check();
            expectSound();
            prepare();
        };
        const std::size_t times = atEachAllocation(work, examine);
        EXPECT_GT(times, 0U);
        stop("c");
    }

    static constexpr int addresses = 6;
};

TEST_F(AllocationFailures, OfAStart)
{
    failEachAllocationOf(
        "startDiscovery", runOf("c", addresses), [] {}, [] { expectNothingOrAll("c", addresses); });
}

TEST_F(AllocationFailures, OfAStartLeaveNoTaskThatAStopDoesNotWaitFor)
{
    std::atomic<bool> stopped{false};
    std::atomic<int> late{0};
    const SocketHook slowHosts([&](SocketCall call) {
        if (call == SocketCall::open) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            late += stopped;
        }
    });
    const std::string operation = "startDiscovery";
    const std::string params = runOf("c", addresses);
    const auto stopAtOnce = [&](bool) {
        EXPECT_EQ(call("stopService"), success);
        stopped = true;
        EXPECT_TRUE(drains());
        stopped = false;
        EXPECT_EQ(call("startService"), success);
    };
    EXPECT_GT(atEachAllocation([&] { call(operation, params); }, stopAtOnce), 10U);
    EXPECT_EQ(late, 0);
}

TEST_F(AllocationFailures, OfAStartThatBlocks)
{
    failEachAllocationOf(
        "startDiscoveryBlocking", runOf("c", addresses), [] {}, [] { expectNothingOrAll("c", addresses); });
}

TEST_F(AllocationFailures, OfAStop)
{
    failEachAllocationOf(
        "stopDiscovery", ask("c"), [] { EXPECT_EQ(start("c", addresses), success); },
        [] { expectNothingOrAll("c", addresses); });
}

TEST_F(AllocationFailures, OfAStatus)
{
    const auto finishedRun = [] {
        EXPECT_EQ(start("c", addresses), success);
        EXPECT_TRUE(drains());
    };
    failEachAllocationOf("getStatus", ask("c"), finishedRun, [] { expectNothingOrAll("c", addresses); });
}

TEST_F(AllocationFailures, OfStartingAndStoppingTheService)
{
    failEachAllocationOf(
        "startService", "{}", [] { EXPECT_EQ(call("stopService"), success); },
        [] { EXPECT_EQ(call("startService"), success); });
    failEachAllocationOf(
        "stopService", "{}", [] { EXPECT_EQ(call("startService"), success); },
        [] { EXPECT_EQ(call("startService"), success); });
    failEachAllocationOf(
        "getServiceConfig", "{}", [] {}, [] {});
}

TEST_F(AllocationFailures, OfTheInitialisation)
{
    atEachAllocation(
        [] {
            try {
                init();
            } catch (const std::bad_alloc&) { // the entry point catches nothing
            }
        },
        [](bool) {
            dakPluginDeinit();
            EXPECT_THAT(init(), testing::HasSubstr(R"("state":"started")"));
            expectSound();
        });
}

TEST_F(AllocationFailures, InMidSliceLeaveWhatWasSubmitted)
{
    constexpr int severalSlices = 700;
    std::string reply;
    const std::string operation = "startDiscovery";
    const std::string params = runOf("c", severalSlices);
    const auto work = [&] { reply = call(operation, params); };
    const std::size_t times = atEachAllocation(
        work,
        [&](bool) {
            expectSuccessOrError(reply);
            EXPECT_TRUE(drains());
            expectNothingOrAll("c", severalSlices);
            expectSound();
        },
        97);
    EXPECT_GT(times, 10U);
}

TEST_F(AllocationFailures, AnywhereInARunLeaveItsStatusTrue)
{
    constexpr int slices = 300;
    std::string reply;
    const std::string operation = "startDiscovery";
    const std::string params = runOf("c", slices);
    const auto wholeRun = [&] {
        reply = call(operation, params);
        const Spared spared;
        EXPECT_TRUE(drains());
    };
    const std::size_t times = atEachAllocation(
        wholeRun,
        [&](bool) {
            const json all = complete("c", slices);
            const json found = finish("c");
            EXPECT_LE(found.at("step"), all.at("step"));
            EXPECT_LE(found.at("printers").size(), found.at("step"));
            EXPECT_TRUE(found.at("total") == all.at("total") || found == unknown("c"));
            for (const json& printer : found.at("printers"))
                EXPECT_THAT(all.at("printers"), testing::Contains(printer));
            expectSound();
        },
        331, Where::anyThread);
    EXPECT_GT(times, 10U);
}

TEST_F(AllocationFailures, ThatGoOnLeaveThePluginSound)
{
    const std::string params = runOf("c", addresses);
    for (const std::string operation : {"startDiscovery", "startDiscoveryBlocking", "getStatus", "stopDiscovery"}) {
        const std::size_t times = atEachAllocation([&] { tryCall(operation, params); }, [](bool) { expectSound(); }, 3,
                                                   Where::thisThread, Extent::allAfter);
        EXPECT_GT(times, 3U);
    }
}

TEST(AllocationFailuresOfJson, AreThrownAndNothingElse)
{
    const std::string document = R"({"a":[1,2.5,null,true,"a text that is too long for its object"],"b":{"c":"d"}})";
    std::string written;
    const std::size_t times = atEachAllocation(
        [&] {
            try {
                written = Kep::Json::parse(document).toJson();
            } catch (const std::bad_alloc&) {
                written = "no memory";
            }
        },
        [&](bool struck) { EXPECT_EQ(written, struck ? "no memory" : document); });
    EXPECT_GT(times, 10U);
}

// A printer found on this thread: by the framework's own engine, in each version.
class AllocationFailuresOfAProbe : public testing::TestWithParam<int> {
protected:
    AllocationFailuresOfAProbe()
    {
        Kep::applyHostSettings({{"host.names.dns", "off"}, {"host.snmp.rate", "0"}});
        profile_->port = 161;
    }

    static std::shared_ptr<Kep::Snmp::Profile> profileOf(int version)
    {
        if (version == 1)
            return std::make_shared<Kep::Snmp::ProfileV1>();
        if (version == 2)
            return std::make_shared<Kep::Snmp::ProfileV2>();
        auto user = std::make_shared<Kep::Snmp::ProfileV3>();
        user->userName = "user";
        return user;
    }

    // Whether there was memory; `found` is what the probe gives then.
    bool probe(std::optional<PrinterDiscoveryPlugin::PrinterRecord>& found) const
    {
        const auto& settings = PrinterDiscoveryPlugin::identificationSettings();
        try {
            found = PrinterDiscoveryPlugin::probeHost(address_, profile_, settings.macAddressOids);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    const std::string address_ = "10.0.0.4";
    const std::shared_ptr<Kep::Snmp::Profile> profile_ = profileOf(GetParam());
};

TEST_P(AllocationFailuresOfAProbe, LeaveAnEngineThatAnswersTheNext)
{
    const std::string serial = "SN4";
    std::optional<PrinterDiscoveryPlugin::PrinterRecord> found;
    ASSERT_TRUE(probe(found));
    const std::size_t times = atEachAllocation([&] { probe(found); },
                                               [&](bool) {
                                                   ASSERT_TRUE(probe(found));
                                                   ASSERT_TRUE(found);
                                                   EXPECT_EQ(found->sn, serial);
                                                   EXPECT_EQ(openSockets(), 0U);
                                               });
    EXPECT_GT(times, 10U);
}

INSTANTIATE_TEST_SUITE_P(Versions, AllocationFailuresOfAProbe, testing::Values(1, 2, 3));

TEST(AllocationFailuresOfKeys, LetTheNextDerivationSucceed)
{
    const auto derive = [](Kep::Snmp::AuthProtocol, const std::string&) { return std::vector<unsigned char>(20); };
    Kep::Snmp::KeyCache cache(derive);
    int user = 0;
    const std::size_t times = atEachAllocation(
        [&] {
            try {
                cache.get(Kep::Snmp::AuthProtocol::sha1, "password " + std::to_string(user));
            } catch (const std::bad_alloc&) {
            }
        },
        [&](bool) {
            EXPECT_EQ(cache.get(Kep::Snmp::AuthProtocol::sha1, "password " + std::to_string(user))->bytes().size(),
                      20U);
            ++user;
        });
    EXPECT_GT(times, 2U);
}

} // namespace
} // namespace Faults
