// Calls of all kinds at once, from many threads.
#include "entry/Host.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using nlohmann::json;

namespace {

class Concurrency : public WithHost {
protected:
    Concurrency() { init(); }

    // Each worker runs on a thread of its own; returns when all have ended.
    static void together(const std::vector<std::function<void()>>& workers)
    {
        std::vector<std::thread> threads;
        for (const auto& worker : workers)
            threads.emplace_back(worker);
        for (std::thread& thread : threads)
            thread.join();
    }

    // Succeeded, or refused by a stopped service: nothing else may be the answer.
    static void expectOrderly(const std::string& reply)
    {
        const json document = json::parse(reply);
        if (!document.contains("code"))
            return;
        EXPECT_EQ(document.at("code"), "internalServerError");
        EXPECT_THAT(document.at("message").get<std::string>(),
                    testing::StartsWith("Invalid operation occurred in the function: "));
    }

    static std::string cookie(int n) { return "cookie " + std::to_string(n % 4); }

    void startRuns(int rounds)
    {
        for (int n = 0; n < rounds; ++n)
            expectOrderly(start(cookie(n), "127.20.0.1", "127.20.1.20", port));
    }

    void startBlocking(int rounds)
    {
        for (int n = 0; n < rounds; ++n)
            expectOrderly(
                call("startDiscoveryBlocking", startParameters("blocking", "127.20.2.1", "127.20.2.30", port).dump()));
    }

    void askForStatus(const std::atomic<bool>& done)
    {
        for (int n = 0; !done; ++n) {
            expectOrderly(status(cookie(n), n % 3));
            expectOrderly(status("blocking"));
        }
    }

    void stopRuns(int rounds)
    {
        for (int n = 0; n < rounds; ++n)
            expectOrderly(stop(n % 5 == 0 ? "blocking" : cookie(n)));
    }

    void restartService(int rounds)
    {
        for (int n = 0; n < rounds; ++n) {
            EXPECT_EQ(call("stopService"), success);
            EXPECT_EQ(call("startService"), success);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    const std::uint16_t port = System::closedPort();
};

TEST_F(Concurrency, OperationsAndServiceRestartsAtOnce)
{
    std::atomic<bool> done{false};
    std::atomic<int> working{4};
    const auto finally = [&](const std::function<void()>& work) {
        return [&, work] {
            work();
            done = --working == 0;
        };
    };
    together({finally([this] { startRuns(40); }), finally([this] { startBlocking(4); }),
              finally([this] { stopRuns(60); }), finally([this] { restartService(15); }), [&] { askForStatus(done); },
              [&] { askForStatus(done); }});

    call("startService");
    EXPECT_EQ(call("startDiscoveryBlocking", startParameters("last", "127.20.0.1", "127.20.0.9", port).dump()),
              success);
    EXPECT_EQ(status("last"), R"({"step":9,"total":9,"state":1,"cookie":"last","printers":[]})");
}

TEST_F(Concurrency, RunsOfManyCallersDoNotMix)
{
    const auto caller = [this](int n) {
        const std::string own = "caller " + std::to_string(n);
        for (int round = 0; round < 5; ++round) {
            EXPECT_EQ(start(own, "127.20.0.1", "127.20.0." + std::to_string(n), port), success);
            const json last = finish(own);
            EXPECT_EQ(last.at("total"), n);
            EXPECT_EQ(last.at("step"), n);
            EXPECT_EQ(last.at("cookie"), own);
        }
    };
    std::vector<std::function<void()>> callers;
    for (int n = 1; n <= 8; ++n)
        callers.push_back([&caller, n] { caller(n * 20); });
    together(callers);
}

TEST_F(Concurrency, ABlockingStartHoldsUpNoOtherCall)
{
    const System::SilentHosts hosts(1);
    std::thread blocked([&] {
        EXPECT_EQ(
            call("startDiscoveryBlocking", startParameters("blocked", "127.20.0.1", "127.20.0.1", hosts.port()).dump()),
            success);
    });
    while (status("blocked") == unknownStatus("blocked"))
        std::this_thread::yield();
    EXPECT_EQ(start("c", "127.20.0.2", "127.20.0.9", port), success);
    finish("c");
    EXPECT_EQ(stop("c"), success);
    blocked.join();
}

TEST_F(Concurrency, DeinitWaitsForACallThatIsInside)
{
    const System::SilentHosts hosts(1);
    std::atomic<bool> answered{false};
    std::thread blocked([&] {
        EXPECT_EQ(
            call("startDiscoveryBlocking", startParameters("blocked", "127.20.0.1", "127.20.0.1", hosts.port()).dump()),
            success);
        answered = true;
    });
    ASSERT_FALSE(hosts.receive().empty()) << "the probe did not begin";
    driver.deinit();
    EXPECT_EQ(status("blocked"), refusal("getPdExecutor"));
    blocked.join();
    EXPECT_TRUE(answered);
}

} // namespace
