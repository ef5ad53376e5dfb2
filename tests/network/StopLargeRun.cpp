/// Stopping runs over networks in which nothing answers, as another program does it over standard streams.
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/RpcClient.h"
#include "tests/network/harness/WaitFor.h"

#include <gtest/gtest.h>

#include <string>

using namespace NetworkTests;

namespace {

constexpr int finished = 1;
constexpr int addresses = 256 * 254;

/// A run over 127.0.0.0/16 less what is never probed. Each address keeps its probe waiting for two tries of a second,
/// and at the host's packet rate the whole would take most of a minute.
class StopOfALargeRun : public testing::Test {
protected:
    Document startParameters() const
    {
        const Document range = {{"from", "127.0.0.1"}, {"to", "127.0.255.254"}};
        const Document profile = {
            {"snmpVersion", 2}, {"snmpPort", port_}, {"communityRead", "public"}, {"communityWrite", ""}};
        const Document config = {{"usePing", false},         {"pingTimeout", 500},
                                 {"snmpTimeout", 500},       {"includeRanges", Document::array({range})},
                                 {"excludeRanges", nullptr}, {"snmpProfile", profile}};
        return {{"config", config}, {"cookie", "large"}};
    }

    Document status(const std::string& cookie = "large")
    {
        return client_.call("getStatus", {{"cookie", cookie}, {"firstIdx", 0}});
    }

    void waitForProbes()
    {
        ASSERT_TRUE(waitFor([this] { return status().at("step") > 0; }, sweepBound));
    }

    /// Stops the run and asks for statuses until the stop is answered; the last one.
    Document statusWhileStopping()
    {
        const int stop = client_.send("stopDiscovery", {{"cookie", "large"}});
        Document last = status();
        while (!client_.answered(stop)) {
            last = status();
            ++answeredMeanwhile_;
            EXPECT_EQ(status("of another run").at("total"), 0);
        }
        EXPECT_TRUE(client_.answerTo(stop).contains("result"));
        return last;
    }

    const std::uint16_t port_ = freeUdpPort({"0.0.0.0"});
    const SilentAddresses silence_{{"0.0.0.0"}, port_};
    int answeredMeanwhile_ = 0;
    RpcClient client_;
};

TEST_F(StopOfALargeRun, AnswersStatusesMeanwhileAndProbesNothingMore)
{
    client_.call("startDiscovery", startParameters());
    waitForProbes();
    const Document last = statusWhileStopping();
    EXPECT_GE(answeredMeanwhile_, 10) << "statuses wait for the stop";
    EXPECT_EQ(last.at("total"), addresses);
    EXPECT_LT(last.at("step"), addresses / 2) << "the run was let go on";
    EXPECT_EQ(status().at("total"), 0) << "the run is forgotten";
    EXPECT_EQ(client_.finish(), 0);
}

TEST_F(StopOfALargeRun, EndsItsBlockingStart)
{
    const int start = client_.send("startDiscoveryBlocking", startParameters());
    waitForProbes();
    statusWhileStopping();
    EXPECT_GE(answeredMeanwhile_, 10) << "statuses wait for the stop";
    EXPECT_TRUE(client_.answerTo(start).contains("result"));
    EXPECT_EQ(status().at("state"), finished);
}

} // namespace
