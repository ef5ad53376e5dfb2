// A long life in short, on the built library with real sockets: many runs, restarts and loads, and what the process
// holds afterwards.
#include "entry/Host.h"
#include "unit/support/ProcessUse.h"

using nlohmann::json;

namespace {

constexpr std::size_t queueLimit = 16;

class Soak : public WithHost {
protected:
    struct Resources {
        std::size_t bytes;
        std::size_t descriptors;
        std::size_t threads;
    };

    static Resources held()
    {
        return {TestSupport::allocatedBytes(), TestSupport::openDescriptors(), TestSupport::threadCount()};
    }

    static void expectNoMore(const Resources& before, const Resources& now, std::size_t bytes)
    {
        EXPECT_LE(now.bytes, before.bytes + bytes);
        EXPECT_EQ(now.descriptors, before.descriptors);
        EXPECT_LE(now.threads, before.threads + queueLimit);
    }

    std::string configuration() const
    {
        json document = json::parse(configurationOf(dataStore(), "0.1"));
        document["settings"]["host.names.dns"] = false;
        document["settings"]["host.snmp.rate"] = 0;
        document["settings"]["host.tasks.limit"] = queueLimit;
        return document.dump();
    }

    void wholeRun(int n, std::uint16_t port) const
    {
        const std::string cookie = "cookie " + std::to_string(n % 8);
        const int hosts = 1 + n % 8;
        ASSERT_EQ(start(cookie, "127.20.0.1", "127.20.0." + std::to_string(hosts), port), success);
        const json last = finish(cookie);
        ASSERT_EQ(last.at("step"), hosts);
        ASSERT_EQ(stop(cookie), success);
        if (n % 50 == 0) {
            ASSERT_EQ(call("stopService"), success);
            ASSERT_EQ(call("startService"), success);
        }
    }
};

TEST_F(Soak, RunsOverRealSocketsLeaveNothingBehind)
{
    init(configuration());
    const std::uint16_t port = System::closedPort();
    int n = 0;
    for (; n < 150 && !HasFatalFailure(); ++n)
        wholeRun(n, port);
    const Resources before = held();
    for (; n < 600 && !HasFatalFailure(); ++n)
        wholeRun(n, port);
    expectNoMore(before, held(), 64 * 1024);
}

TEST_F(Soak, LoadsAndUnloadsInMidRunLeaveNothingBehind)
{
    const System::SilentHosts hosts(8);
    const auto cycle = [&] {
        if (driver.handle == nullptr)
            load();
        init(configuration());
        ASSERT_EQ(start("c", "127.20.0.1", "127.20.0.8", hosts.port()), success);
        ASSERT_FALSE(hosts.receive().empty()) << "the probes did not begin";
        unload();
        ASSERT_TRUE(System::isGone(PD_LIBRARY));
    };
    // The allocator keeps pieces for each thread, and has its fill after about ten loads.
    for (int n = 0; n < 12 && !HasFatalFailure(); ++n)
        cycle();
    const Resources before = held();
    for (int n = 0; n < 12 && !HasFatalFailure(); ++n)
        cycle();
    expectNoMore(before, held(), 16 * 1024);
}

} // namespace
