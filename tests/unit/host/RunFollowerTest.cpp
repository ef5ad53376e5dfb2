#include "host/RunFollower.h"

#include "host/Errors.h"
#include "tests/unit/host/FakePlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Time passes only by waiting; the user interrupts at a set moment.
class FakePace : public IPace {
public:
    std::optional<std::chrono::milliseconds> interruptAt;
    std::vector<std::chrono::milliseconds> sleeps;

    std::chrono::milliseconds elapsed() const { return elapsed_; }
    std::chrono::steady_clock::time_point now() override { return std::chrono::steady_clock::time_point(elapsed_); }
    bool interrupted() override { return interruptAt && elapsed_ >= *interruptAt; }

    bool sleep(std::chrono::milliseconds time) override
    {
        sleeps.push_back(time);
        if (interruptAt && elapsed_ + time >= *interruptAt) {
            elapsed_ = std::max(elapsed_, *interruptAt);
            return false;
        }
        elapsed_ += time;
        return true;
    }

    void rest(std::chrono::milliseconds time) override { elapsed_ += time; }

private:
    std::chrono::milliseconds elapsed_{0};
};

class KeptProgress : public IProgress {
public:
    std::vector<std::size_t> found;
    void show(const RunResult& soFar) override { found.push_back(soFar.printers.size()); }
};

class FollowedRuns : public testing::Test {
protected:
    FakePlugin plugin;
    FakePace pace;
    KeptProgress progress;

    RunResult follow() { return RunFollower(plugin, pace, progress).follow(R"({"cookie":"c"})", "c"); }

    void statusIs(long long step, int state, const std::vector<std::string>& ips = {}, long long total = 254)
    {
        nlohmann::ordered_json printers = nlohmann::ordered_json::array();
        for (const std::string& ip : ips)
            printers.push_back({{"hostname", "h" + ip}, {"ip", ip}, {"mac", {"m1", "m2"}}, {"name", "n"}, {"sn", "s"}});
        plugin.reply("getStatus",
                     nlohmann::ordered_json{
                         {"step", step}, {"total", total}, {"state", state}, {"cookie", "c"}, {"printers", printers}}
                         .dump());
    }

    /// The parameters of the status calls.
    std::vector<std::string> statusParams() const
    {
        std::vector<std::string> texts;
        for (const PluginCall& call : plugin.calls())
            if (call.operation == "getStatus")
                texts.push_back(call.params);
        return texts;
    }

    std::string failure()
    {
        try {
            follow();
        } catch (const Failure& error) {
            return error.what();
        }
        return "none";
    }
};

TEST_F(FollowedRuns, StartThenStatusUntilFinished)
{
    statusIs(1, 2);
    statusIs(100, 2);
    statusIs(254, 1);
    const RunResult result = follow();
    EXPECT_THAT(plugin.operations(), ElementsAre("startDiscovery", "getStatus", "getStatus", "getStatus"));
    EXPECT_EQ(plugin.calls().front().service, "PrinterDiscovery");
    EXPECT_EQ(plugin.calls().front().params, R"({"cookie":"c"})");
    EXPECT_EQ(result.step, 254U);
    EXPECT_EQ(result.total, 254U);
    EXPECT_EQ(result.state, 1);
    EXPECT_FALSE(result.interrupted);
    EXPECT_THAT(plugin.withdrawn(), IsEmpty());
}

TEST_F(FollowedRuns, AsksOnlyForPrintersNotYetReceived)
{
    statusIs(1, 2);
    statusIs(10, 2, {"10.0.0.3", "10.0.0.1"});
    statusIs(20, 2);
    statusIs(254, 1, {"10.0.0.2"});
    const RunResult result = follow();
    EXPECT_THAT(statusParams(), ElementsAre(R"({"cookie":"c","firstIdx":0})", R"({"cookie":"c","firstIdx":0})",
                                            R"({"cookie":"c","firstIdx":2})", R"({"cookie":"c","firstIdx":2})"));
    ASSERT_EQ(result.printers.size(), 3U);
    EXPECT_EQ(result.printers[0].ip, "10.0.0.3");
    EXPECT_EQ(result.printers[2].ip, "10.0.0.2");
    EXPECT_EQ(result.printers[2].hostname, "h10.0.0.2");
    EXPECT_THAT(result.printers[2].mac, ElementsAre("m1", "m2"));
    EXPECT_THAT(progress.found, ElementsAre(0, 2, 2, 3));
}

TEST_F(FollowedRuns, ARunThatIsFinishedAtOnceIsAskedOnce)
{
    statusIs(0, 1, {}, 0);
    follow();
    EXPECT_EQ(statusParams().size(), 1U);
    EXPECT_THAT(pace.sleeps, IsEmpty());
}

TEST_F(FollowedRuns, AskMoreSeldomAsTheyGoOn)
{
    for (int i = 0; i < 20; ++i)
        statusIs(i, 2);
    statusIs(254, 1);
    follow();
    EXPECT_EQ(pace.sleeps.front(), 50ms);
    EXPECT_EQ(pace.sleeps.back(), 250ms);
    EXPECT_TRUE(std::is_sorted(pace.sleeps.begin(), pace.sleeps.end()));
}

TEST_F(FollowedRuns, CountsBeyondSigned32BitsAreRead)
{
    statusIs(-2147483648LL, 1, {}, -33554432);
    const RunResult result = follow();
    EXPECT_EQ(result.step, 2147483648U);
    EXPECT_EQ(result.total, 4261412864U);
}

TEST_F(FollowedRuns, InterruptionWithdrawsTheStartsWorkAndKeepsWhatWasFound)
{
    pace.interruptAt = 60ms;
    statusIs(1, 2, {"10.0.0.1"});
    statusIs(5, 2);
    statusIs(6, 2, {"10.0.0.2"});
    statusIs(7, 1, {"10.0.0.3"});
    const RunResult result = follow();
    EXPECT_THAT(plugin.withdrawn(), ElementsAre(plugin.startWork()));
    EXPECT_TRUE(result.interrupted);
    EXPECT_EQ(result.printers.size(), 3U);
    EXPECT_EQ(result.state, 1);
    EXPECT_EQ(result.step, 7U);
}

TEST_F(FollowedRuns, AfterAnInterruptionSlowProbesAreNotWaitedFor)
{
    pace.interruptAt = 60ms;
    statusIs(1, 2);
    const RunResult result = follow();
    EXPECT_TRUE(result.interrupted);
    EXPECT_EQ(result.state, 2);
    EXPECT_GE(pace.elapsed(), 2060ms);
    EXPECT_LE(pace.elapsed(), 2200ms);
}

TEST_F(FollowedRuns, NothingIsStartedAfterAnInterruption)
{
    pace.interruptAt = 0ms;
    const RunResult result = follow();
    EXPECT_TRUE(result.interrupted);
    EXPECT_THAT(plugin.operations(), IsEmpty());
}

TEST_F(FollowedRuns, AFailedStartIsReportedInThePluginsWords)
{
    plugin.reply("startDiscovery",
                 R"({"code":"internalServerError","message":"member \"x\": bad","data":null,"operation":{}})");
    EXPECT_EQ(failure(), "startDiscovery failed: member \"x\": bad");
    EXPECT_THAT(plugin.operations(), ElementsAre("startDiscovery"));
}

TEST_F(FollowedRuns, AFailedStatusIsReported)
{
    statusIs(1, 2);
    plugin.reply("getStatus", R"({"code":"internalServerError","message":"closed","data":null,"operation":{}})");
    EXPECT_EQ(failure(), "getStatus failed: closed");
}

TEST_F(FollowedRuns, RepliesThatAreNotAsAgreedAreReported)
{
    plugin.reply("getStatus", "nonsense");
    EXPECT_THAT(failure(), HasSubstr("not JSON"));
}

TEST_F(FollowedRuns, StatusesThatAreNotAsAgreedAreReported)
{
    for (const char* reply : {"{}", "[]", "1", R"({"step":"1","total":1,"state":1,"printers":[]})",
                              R"({"step":1,"total":1,"state":1,"printers":[{"ip":"10.0.0.1"}]})"}) {
        plugin.replyOnly("getStatus", reply);
        EXPECT_THAT(failure(), HasSubstr("not as agreed")) << reply;
    }
}

} // namespace
} // namespace Host
