// A long life in short: thousands of runs, started, followed, stopped, forgotten and timed out, and restarts of the
// service among them. What the process holds afterwards is what it held after the first few.
//
// PRINTER_DISCOVERY_SOAK is the number of runs where the short form's is not enough.
#include "HostFakes.h"
#include "Resources.h"
#include "World.h"
#include "tests/unit/support/ProcessUse.h"

#include <cstdlib>
#include <thread>
#include <vector>

using nlohmann::json;

namespace Faults {
namespace {

constexpr std::int64_t moreThanADay = 86'402;
constexpr std::size_t queueLimit = 8;        // the setting of the world
constexpr std::size_t blockBand = 20;        // a run has more than ten, and there are thousands
constexpr std::size_t byteBand = 128 * 1024; // what allocators keep for their threads

int soakRuns()
{
    if (const char* runs = std::getenv("PRINTER_DISCOVERY_SOAK"))
        return std::atoi(runs);
    return TestSupport::isSanitized() ? 1'500 : 8'000;
}

class Soak : public WithWorld {
protected:
    // The cookies come round again: one that names no run any more stays in the table.
    static std::string cookie(int n) { return "cookie " + std::to_string(n % 16); }

    static int addressesOf(int n) { return n % 100 == 99 ? 300 : 1 + n % 8; }

    // One run, in one of the ways in which a host may treat it.
    static void live(int n)
    {
        const std::string name = cookie(n);
        const int addresses = addressesOf(n);
        const char* const operation = n % 5 == 0 ? "startDiscoveryBlocking" : "startDiscovery";
        ASSERT_EQ(call(operation, runOf(name, addresses, 1 + n % 3)), success);
        if (n % 7 != 0) {
            ASSERT_EQ(finish(name), complete(name, addresses));
        }
        if (n % 2 == 0) {
            ASSERT_EQ(stop(name), success);
        }
        if (n % 512 == 0)
            restartService();
        if (n % 64 == 0)
            timeOut();
    }

    static void restartService()
    {
        ASSERT_EQ(call("stopService"), success);
        ASSERT_EQ(call("startService"), success);
    }

    // All runs that are left are forgotten: they have been idle for too long.
    static void timeOut()
    {
        ASSERT_TRUE(drains());
        passTime(moreThanADay);
        ASSERT_EQ(stop("nobody's"), success);
    }

    static Resources atRest()
    {
        timeOut();
        return Resources::now();
    }

    static void expectNoMore(const Resources& before, const Resources& now)
    {
        EXPECT_LE(now.blocks, before.blocks + blockBand);
        EXPECT_LE(now.bytes, before.bytes + byteBand);
        EXPECT_LE(now.threads, before.threads + queueLimit + 1);
        EXPECT_EQ(now.descriptors, before.descriptors);
        EXPECT_LE(queueThreads(), queueLimit + 1) << "and the one that makes the others";
        std::printf("from %zu to %zu blocks, %zu to %zu bytes, %zu to %zu threads, %zu to %zu descriptors\n",
                    before.blocks, now.blocks, before.bytes, now.bytes, before.threads, now.threads, before.descriptors,
                    now.descriptors);
    }
};

TEST_F(Soak, ThousandsOfRunsLeaveNothingBehind)
{
    const int runs = soakRuns();
    int n = 0;
    for (; n < runs / 8 && !HasFatalFailure(); ++n)
        live(n);
    restartService(); // no run is left; afterwards those are that were not timed out
    const Resources before = atRest();
    for (; n < runs && !HasFatalFailure(); ++n)
        live(n);
    expectNoMore(before, atRest());
}

TEST_F(Soak, ThreadsOfAHostAtOnceLeaveNothingBehind)
{
    constexpr int hosts = 3;
    const auto together = [](int runs) {
        std::vector<std::thread> threads;
        for (int host = 0; host < hosts; ++host)
            threads.emplace_back([host, runs] {
                for (int n = 0; n < runs; ++n) {
                    const std::string name = "host " + std::to_string(host);
                    EXPECT_EQ(start(name, addressesOf(n)), success);
                    EXPECT_EQ(finish(name), complete(name, addressesOf(n)));
                    EXPECT_EQ(stop(name), success);
                }
            });
        for (std::thread& thread : threads)
            thread.join();
    };
    const int runs = soakRuns() / 8 / hosts;
    together(runs / 8);
    const Resources before = atRest();
    together(runs);
    expectNoMore(before, atRest());
}

TEST_F(Soak, StopsOfTheServiceInMidRunLeaveNothingBehind)
{
    const auto interruptedRun = [] {
        ASSERT_EQ(start("c", 300), success);
        restartService();
    };
    const int runs = soakRuns() / 32;
    for (int n = 0; n < runs / 8; ++n)
        interruptedRun();
    const Resources before = atRest();
    for (int n = 0; n < runs; ++n)
        interruptedRun();
    expectNoMore(before, atRest());
}

} // namespace
} // namespace Faults
