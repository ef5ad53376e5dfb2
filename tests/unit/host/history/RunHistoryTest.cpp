#include "host/history/RunHistory.h"

#include "host/Addresses.h"
#include "tests/unit/host/TemporaryFolder.h"
#include "tests/unit/host/history/Noon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class HistoryOfRuns : public testing::Test {
protected:
    /// The history as a program has it that starts now.
    RunHistory& restart(std::size_t most = 3)
    {
        history.emplace(path, most);
        return *history;
    }

    static RunRecord run(const std::string& id, std::chrono::seconds after = 0s)
    {
        return {.id = id,
                .ended = noon + after,
                .summary = {{"id", id}, {"name", "floor \"2\""}},
                .printers = {{.hostname = "h", .ip = "10.0.0.1", .mac = {"02-00-00-00-00-01"}, .name = "n", .sn = "s"}},
                .outcomes = {{.address = 0x0A000001, .outcome = AddressOutcome::Printer, .problem = ""},
                             {.address = 0x0A000002, .outcome = AddressOutcome::Silent, .problem = ""},
                             {.address = 0x0A000003, .outcome = AddressOutcome::Failed, .problem = "error status 5"}}};
    }

    std::vector<std::string> ids() const
    {
        std::vector<std::string> all;
        for (const JsonValue& summary : history->summaries())
            all.push_back(summary.at("id"));
        return all;
    }

    /// Keys that the file holds of runs.
    std::size_t keysInFile() const { return Kep::Host::DataStore(path).list("history.").size(); }

    TemporaryFolder folder;
    const std::string path = folder.file("settings.db");
    std::optional<RunHistory> history;
};

TEST_F(HistoryOfRuns, ComesBackAfterARestart)
{
    restart().add(run("a"));
    const auto kept = restart().find("a");
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->id, "a");
    EXPECT_EQ(kept->ended, noon);
    EXPECT_EQ(kept->summary, run("a").summary);
    EXPECT_EQ(kept->printers, run("a").printers);
    ASSERT_THAT(kept->outcomes, SizeIs(2)) << "silent addresses are not kept";
    EXPECT_EQ(kept->outcomes[0].address, 0x0A000001U);
    EXPECT_EQ(kept->outcomes[0].outcome, AddressOutcome::Printer);
    EXPECT_EQ(kept->outcomes[1].outcome, AddressOutcome::Failed);
    EXPECT_EQ(kept->outcomes[1].problem, "error status 5");
}

TEST_F(HistoryOfRuns, IsListedNewestFirst)
{
    restart();
    history->add(run("b", 20s));
    history->add(run("a", 10s));
    history->add(run("c", 30s));
    EXPECT_THAT(ids(), ElementsAre("c", "b", "a"));
    restart();
    EXPECT_THAT(ids(), ElementsAre("c", "b", "a"));
}

TEST_F(HistoryOfRuns, KeepsTheNewestAndDropsTheOldest)
{
    restart(2);
    for (int i = 0; i < 5; ++i)
        history->add(run("run-" + std::to_string(i), i * 1s));
    EXPECT_THAT(ids(), ElementsAre("run-4", "run-3"));
    EXPECT_EQ(keysInFile(), 4U);
    history->add(run("old", -1h));
    EXPECT_THAT(ids(), ElementsAre("run-4", "run-3")) << "one that is older than all is the oldest";
    EXPECT_FALSE(history->find("run-0"));
    EXPECT_EQ(keysInFile(), 4U);
}

TEST_F(HistoryOfRuns, ShrinksWhenFewerAreToBeKept)
{
    restart(3);
    for (const char* id : {"a", "b", "c"})
        history->add(run(id, std::chrono::seconds(id[0])));
    restart(1);
    EXPECT_THAT(ids(), ElementsAre("c"));
    EXPECT_EQ(keysInFile(), 2U);
    restart(0);
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(keysInFile(), 0U);
}

TEST_F(HistoryOfRuns, KeepsNothingAndMakesNoFileWhenItIsOff)
{
    restart(0).add(run("a"));
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_FALSE(history->find("a"));
    restart(5);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(HistoryOfRuns, ForgetsARunThatIsRemoved)
{
    restart().add(run("a"));
    history->add(run("b", 1s));
    EXPECT_TRUE(history->remove("a"));
    EXPECT_FALSE(history->remove("a"));
    EXPECT_FALSE(history->find("a"));
    EXPECT_THAT(ids(), ElementsAre("b"));
    EXPECT_EQ(keysInFile(), 2U);
}

TEST_F(HistoryOfRuns, KnowsNoRunThatWasNotAdded)
{
    EXPECT_FALSE(restart().find("a"));
    EXPECT_FALSE(history->find(""));
    EXPECT_FALSE(history->remove("a"));
}

TEST_F(HistoryOfRuns, BoundsWhatItKeepsOfARun)
{
    RunRecord large = run("large");
    large.printers.assign(RunHistory::MostPrinters + 5, large.printers[0]);
    large.outcomes.assign(RunHistory::MostOutcomes + 5, large.outcomes[2]);
    RunRecord wordy = run("wordy", 1s);
    wordy.printers.assign(200,
                          {.hostname = "", .ip = "10.0.0.1", .mac = {}, .name = std::string(60'000, 'x'), .sn = ""});
    restart().add(large);
    history->add(wordy);
    restart();
    EXPECT_THAT(history->find("large")->printers, SizeIs(RunHistory::MostPrinters));
    EXPECT_THAT(history->find("large")->outcomes, SizeIs(RunHistory::MostOutcomes));
    EXPECT_THAT(history->find("wordy")->printers, SizeIs(RunHistory::MostBytes / 60'000));
}

TEST_F(HistoryOfRuns, PassesOverWhatIsNoRun)
{
    restart().add(run("a"));
    Kep::Host::DataStore store(path);
    store.set("history.summaries.000000000000001-b", "no JSON");
    store.set("history.summaries.000000000000001-c", "[]");
    store.set("history.summaries.d", R"({"id":"d"})");
    store.set("history.summaries.00000000000000x-e", R"({"id":"e"})");
    store.set("history.summaries.000000000000001-f", R"({"id":"f"})");
    store.set("history.details.000000000000001-f", R"({"printers":[{}]})");
    restart();
    EXPECT_THAT(ids(), ElementsAre("a", "f"));
    EXPECT_THAT(history->find("f")->printers, IsEmpty());
}

TEST_F(HistoryOfRuns, TellsWhenTheFileCannotBeUsedAndIsAsBefore)
{
    restart().add(run("a"));
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    try {
        history->add(run("b"));
        ADD_FAILURE() << "it was added";
    } catch (const std::exception& error) {
        EXPECT_THAT(error.what(), HasSubstr(path));
    }
    EXPECT_ANY_THROW(history->remove("a"));
    EXPECT_THAT(ids(), ElementsAre("a"));
    EXPECT_ANY_THROW(restart());
}

TEST_F(HistoryOfRuns, IsUsedByManyThreads)
{
    restart(20);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([this, i] {
                for (int j = 0; j < 5; ++j) {
                    const std::string id = std::to_string(i) + "-" + std::to_string(j);
                    history->add(run(id, std::chrono::seconds(j)));
                    EXPECT_TRUE(history->find(id));
                    history->summaries();
                }
            });
    }
    EXPECT_THAT(ids(), SizeIs(20));
}

TEST_F(HistoryOfRuns, IsAsLongAsTheSettingSays)
{
    EXPECT_EQ(keptRuns(path), 0U);
    Kep::Host::DataStore store(path);
    store.set("host.history.runs", "250");
    EXPECT_EQ(keptRuns(path), 250U);
    for (const char* wrong : {"1001", "-1", "many", ""}) {
        store.set("host.history.runs", wrong);
        EXPECT_ANY_THROW(keptRuns(path)) << wrong;
    }
}

} // namespace
} // namespace Host
