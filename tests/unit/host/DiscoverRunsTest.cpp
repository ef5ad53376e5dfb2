#include "host/DiscoverRuns.h"

#include "host/StreamOutput.h"
#include "tests/unit/host/FakePlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace Host {
namespace {

using testing::ElementsAre;

/// Waits take no time; the user interrupts after some of them.
class CountedPace : public IPace {
public:
    int sleepsUntilInterrupted = 1000;

    std::chrono::steady_clock::time_point now() override { return std::chrono::steady_clock::time_point(time_); }
    bool interrupted() override { return sleepsUntilInterrupted <= 0; }
    bool sleep(std::chrono::milliseconds) override { return --sleepsUntilInterrupted > 0; }
    void rest(std::chrono::milliseconds time) override { time_ += time; }

private:
    std::chrono::milliseconds time_{0};
};

class KeptResults : public IProgress {
public:
    std::vector<RunResult> shown;
    void show(const RunResult& soFar) override { shown.push_back(soFar); }
};

class SeveralRuns : public testing::Test {
protected:
    FakePlugin plugin;
    CountedPace pace;
    KeptResults progress;

    RunResult follow(std::size_t runs)
    {
        std::vector<RunStart> starts;
        for (std::size_t i = 1; i <= runs; ++i)
            starts.push_back({"document " + std::to_string(i), "cookie " + std::to_string(i)});
        return followRuns(plugin, pace, progress, starts, 10);
    }

    static Printer printer(const std::string& ip, const std::string& name = "", const std::string& sn = "",
                           const std::vector<std::string>& mac = {}, const std::string& hostname = "")
    {
        return {hostname, ip, mac, name, sn};
    }

    void statusIs(int step, int state, const std::vector<Printer>& printers = {})
    {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Printer& p : printers)
            list.push_back({{"hostname", p.hostname}, {"ip", p.ip}, {"mac", p.mac}, {"name", p.name}, {"sn", p.sn}});
        plugin.reply(
            "getStatus",
            nlohmann::ordered_json{{"step", step}, {"total", 10}, {"state", state}, {"cookie", "c"}, {"printers", list}}
                .dump());
    }
};

TEST_F(SeveralRuns, FollowOneAnother)
{
    statusIs(4, 2);
    statusIs(10, 1);
    statusIs(10, 1);
    const RunResult result = follow(2);
    EXPECT_THAT(plugin.operations(),
                ElementsAre("startDiscovery", "getStatus", "getStatus", "startDiscovery", "getStatus"));
    EXPECT_EQ(plugin.calls()[0].params, "document 1");
    EXPECT_EQ(plugin.calls()[1].params, R"({"cookie":"cookie 1","firstIdx":0})");
    EXPECT_EQ(plugin.calls()[3].params, "document 2");
    EXPECT_EQ(plugin.calls()[4].params, R"({"cookie":"cookie 2","firstIdx":0})");
    EXPECT_EQ(result.step, 20U);
    EXPECT_EQ(result.total, 20U);
    EXPECT_EQ(result.state, 1);
}

TEST_F(SeveralRuns, ShowTheSumsFromTheBeginning)
{
    statusIs(4, 2, {printer("10.0.0.1")});
    statusIs(10, 1);
    statusIs(3, 2, {printer("10.0.0.2")});
    statusIs(10, 1);
    follow(2);
    std::vector<std::string> sums;
    for (const RunResult& shown : progress.shown)
        sums.push_back(std::to_string(shown.step) + '/' + std::to_string(shown.total) + '/' +
                       std::to_string(shown.printers.size()));
    EXPECT_THAT(sums, ElementsAre("4/20/1", "10/20/1", "13/20/2", "20/20/2"));
}

TEST_F(SeveralRuns, ListAPrinterOnceAsDescribedBest)
{
    statusIs(10, 1,
             {printer("10.0.0.1", "Office"), printer("10.0.0.2", "A", "1", {"m"}), printer("10.0.0.3", "", "9")});
    statusIs(10, 1,
             {printer("10.0.0.3", "Hall"), printer("10.0.0.2", "B"), printer("10.0.0.1", "Office", "77"),
              printer("10.0.0.4")});
    EXPECT_THAT(follow(2).printers,
                ElementsAre(printer("10.0.0.1", "Office", "77"), printer("10.0.0.2", "A", "1", {"m"}),
                            printer("10.0.0.3", "", "9"), printer("10.0.0.4")));
}

TEST_F(SeveralRuns, EveryTextIsADetail)
{
    statusIs(10, 1, {printer("10.0.0.1", "a", "b", {"", ""}), printer("10.0.0.2", "a", "b", {}, "h")});
    statusIs(10, 1, {printer("10.0.0.1", "a", "", {"m", "n"}), printer("10.0.0.2", "a", "b", {"m", ""})});
    EXPECT_THAT(follow(2).printers,
                ElementsAre(printer("10.0.0.1", "a", "", {"m", "n"}), printer("10.0.0.2", "a", "b", {}, "h")));
}

TEST_F(SeveralRuns, EndWithTheOneThatIsInterrupted)
{
    statusIs(10, 1, {printer("10.0.0.1")});
    statusIs(4, 2);
    pace.sleepsUntilInterrupted = 1;
    const RunResult result = follow(3);
    EXPECT_TRUE(result.interrupted);
    EXPECT_EQ(result.step, 14U);
    EXPECT_EQ(result.total, 30U);
    EXPECT_EQ(result.state, 2);
    EXPECT_EQ(result.printers.size(), 1U);
    EXPECT_THAT(plugin.withdrawn(), ElementsAre(plugin.startWork()));
    const auto names = plugin.operations();
    EXPECT_EQ(std::count(names.begin(), names.end(), "startDiscovery"), 2);
}

TEST_F(SeveralRuns, CountBeyond32Bits)
{
    statusIs(1, 1);
    const RunResult result = followRuns(plugin, pace, progress, {{"a", "a"}, {"b", "b"}}, 4261412864U);
    EXPECT_EQ(result.total, 8522825728U);
}

TEST_F(SeveralRuns, StreamWhatIsNewAndWhatIsBetterKnown)
{
    statusIs(1, 2, {printer("10.0.0.1", "Office")});
    statusIs(10, 1, {printer("10.0.0.2", "Hall")});
    statusIs(10, 1, {printer("10.0.0.1", "Office", "77"), printer("10.0.0.2", "Hall")});
    follow(2);
    StreamOutput stream;
    std::vector<std::string> lines;
    for (const RunResult& shown : progress.shown)
        lines.push_back(stream.newLines(shown));
    EXPECT_THAT(lines, ElementsAre(R"({"hostname":"","ip":"10.0.0.1","mac":[],"name":"Office","sn":""})"
                                   "\n",
                                   R"({"hostname":"","ip":"10.0.0.2","mac":[],"name":"Hall","sn":""})"
                                   "\n",
                                   R"({"hostname":"","ip":"10.0.0.1","mac":[],"name":"Office","sn":"77"})"
                                   "\n"));
}

} // namespace
} // namespace Host
