/// The operations as another program calls them, over standard streams, with real agents behind them.
#include "tests/network/AgentNetwork.h"
#include "tests/network/harness/RpcClient.h"
#include "tests/network/harness/WaitFor.h"

#include <stdexcept>

using namespace NetworkTests;

namespace {

constexpr int finished = 1;
constexpr int running = 2;

/// Three printers, a server and two silent addresses, and a client of the service.
class StdioService : public AgentNetwork {
protected:
    void SetUp() override
    {
        start(1, fullPrinter(ownAddress(1)), {v2c()});
        start(2, server(), {v2c()});
        start(3, secondRowPrinter(ownAddress(3)), {v2c()});
        start(4, latin1Printer(ownAddress(4)), {v2c()});
    }

    /// The parameters of a start over the last octets `from` to `to`.
    Document startParameters(const std::string& cookie, int from, int to) const
    {
        const Document range = {{"from", ownAddress(from)}, {"to", ownAddress(to)}};
        const Document profile = {
            {"snmpVersion", 2}, {"snmpPort", port()}, {"communityRead", "public"}, {"communityWrite", ""}};
        const Document config = {{"usePing", false},         {"pingTimeout", 500},
                                 {"snmpTimeout", 500},       {"includeRanges", Document::array({range})},
                                 {"excludeRanges", nullptr}, {"snmpProfile", profile}};
        return {{"config", config}, {"cookie", cookie}};
    }

    Document status(const std::string& cookie, std::size_t firstIdx)
    {
        return client_.call("getStatus", {{"cookie", cookie}, {"firstIdx", firstIdx}});
    }

    /// Follows a run to its end, asking each time only for printers that are new; gives the last status and, in
    /// `found`, all printers.
    Document follow(const std::string& cookie, std::vector<Document>& found)
    {
        Document document;
        const auto ended = [&] {
            document = status(cookie, found.size());
            found.insert(found.end(), document.at("printers").begin(), document.at("printers").end());
            return document.at("state") == finished;
        };
        if (!waitFor(ended, sweepBound)) {
            throw std::runtime_error("the run does not end: " + document.dump());
        }
        return document;
    }

    static Document statusDocument(int step, int total, int state, const std::string& cookie, const Document& printers)
    {
        Document document = Document::object();
        document["step"] = step;
        document["total"] = total;
        document["state"] = state;
        document["cookie"] = cookie;
        document["printers"] = printers;
        return document;
    }

    static Document unknown(const std::string& cookie)
    {
        return statusDocument(0, 0, finished, cookie, Document::array());
    }

    const SilentAddresses silence_{{ownAddress(8), ownAddress(9)}, port()};
    RpcClient client_;
};

TEST_F(StdioService, RunIsFollowedWithNewPrintersOnly)
{
    client_.call("startDiscovery", startParameters("floor 2", 1, 9));
    std::vector<Document> found;
    const Document last = follow("floor 2", found);
    EXPECT_EQ(last.at("step"), 9);
    EXPECT_EQ(last.at("total"), 9);
    EXPECT_EQ(last.at("cookie"), "floor 2");
    EXPECT_EQ(finishedSweep(9, found), finishedSweep(9, printers()));
    EXPECT_EQ(status("floor 2", 0), unknown("floor 2"));
    EXPECT_EQ(client_.finish(), 0);
}

TEST_F(StdioService, StatusShowsARunInProgress)
{
    client_.call("startDiscovery", startParameters("silent", 8, 9));
    EXPECT_EQ(status("silent", 0), statusDocument(0, 2, running, "silent", Document::array()));
    std::vector<Document> found;
    EXPECT_EQ(follow("silent", found), statusDocument(2, 2, finished, "silent", Document::array()));
}

TEST_F(StdioService, StoppedRunIsForgotten)
{
    client_.call("startDiscovery", startParameters("to be stopped", 1, 9));
    client_.call("stopDiscovery", {{"cookie", "to be stopped"}});
    EXPECT_EQ(status("to be stopped", 0), unknown("to be stopped"));
}

TEST_F(StdioService, BlockingStartHoldsUpNoOtherCall)
{
    const int start = client_.send("startDiscoveryBlocking", startParameters("blocking", 1, 9));
    ASSERT_TRUE(waitFor([&] { return status("blocking", 0).at("total") == 9; }, sweepBound));
    EXPECT_EQ(status("blocking", 0).at("state"), running) << "the silent addresses are still waited for";
    EXPECT_FALSE(client_.answered(start)) << "the blocking start answers when its run has ended";
    EXPECT_TRUE(client_.answerTo(start).contains("result"));
    std::vector<Document> found;
    EXPECT_EQ(follow("blocking", found).at("step"), 9);
    EXPECT_EQ(finishedSweep(9, found), finishedSweep(9, printers()));
}

TEST_F(StdioService, StopEndsABlockingStart)
{
    const int start = client_.send("startDiscoveryBlocking", startParameters("blocking", 8, 9));
    ASSERT_TRUE(waitFor([&] { return status("blocking", 0).at("total") == 2; }, sweepBound));
    client_.call("stopDiscovery", {{"cookie", "blocking"}});
    EXPECT_TRUE(client_.answerTo(start).contains("result"));
    EXPECT_EQ(status("blocking", 0), unknown("blocking"));
}

TEST_F(StdioService, RunsSideBySideKeepTheirPrintersApart)
{
    client_.call("startDiscovery", startParameters("first", 1, 2));
    client_.call("startDiscovery", startParameters("second", 3, 4));
    std::vector<Document> first;
    std::vector<Document> second;
    EXPECT_EQ(follow("first", first).at("step"), 2);
    EXPECT_EQ(follow("second", second).at("step"), 2);
    EXPECT_EQ(finishedSweep(2, first), finishedSweep(2, {printers()[0]}));
    EXPECT_EQ(finishedSweep(2, second), finishedSweep(2, {printers()[1], printers()[2]}));
}

TEST_F(StdioService, UnknownOperationIsAnErrorWithThePluginsDocument)
{
    const Document answer = client_.answerTo(client_.send("startScanning", Document::object()));
    EXPECT_EQ(answer.at("error").at("data").at("code"), "notFound");
}

TEST_F(StdioService, MissingParameterIsNamed)
{
    const Document answer = client_.answerTo(client_.send("getStatus", {{"firstIdx", 0}}));
    const Document& error = answer.at("error").at("data");
    EXPECT_EQ(error.at("code"), "internalServerError");
    EXPECT_NE(error.at("message").get<std::string>().find("cookie"), std::string::npos);
}

} // namespace
