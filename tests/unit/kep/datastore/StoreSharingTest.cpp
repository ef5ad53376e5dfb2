// Several threads and processes on one file.
#include "Kep/Exception.h"
#include "Kep/Host/DataStore.h"
#include "datastore/StoreTransaction.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <future>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using Kep::StoreTransaction;
using Kep::Host::DataStore;
using Access = Kep::StoreTransaction::Access;

namespace {

constexpr int writers = 3;
constexpr int rounds = 10;

class SharedStore : public testing::Test {
protected:
    // Adds 1 to a counter, many times, each in a transaction, and writes keys of its own between.
    void countUp(int writer) const
    {
        for (int round = 0; round < rounds; ++round) {
            StoreTransaction transaction(path_, Access::write);
            transaction.set("counter", std::to_string(std::stoi(transaction.get("counter").value_or("0")) + 1));
            transaction.commit();
            DataStore(path_).set("writer" + std::to_string(writer) + "." + std::to_string(round), "x");
        }
    }

    void expectNothingLost() const
    {
        EXPECT_EQ(DataStore(path_).get("counter"), std::to_string(writers * rounds));
        EXPECT_EQ(DataStore(path_).list("writer").size(), static_cast<std::size_t>(writers * rounds));
    }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(SharedStore, ThreadsThatWriteAtOnceLoseNothing)
{
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([this, writer] { countUp(writer); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    expectNothingLost();
}

TEST_F(SharedStore, ProcessesThatWriteAtOnceLoseNothing)
{
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            try {
                countUp(writer);
            } catch (...) {
                _exit(1);
            }
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    expectNothingLost();
}

TEST_F(SharedStore, AReaderSeesOneStateWhileAWriterWaits)
{
    DataStore(path_).set("a", "1");
    auto reader = std::make_unique<StoreTransaction>(path_, Access::read);
    EXPECT_EQ(reader->get("a"), "1");
    auto written = std::async(std::launch::async, [this] { DataStore(path_).set("a", "2"); });
    EXPECT_NE(written.wait_for(std::chrono::milliseconds(200)), std::future_status::ready);
    EXPECT_EQ(reader->get("a"), "1");
    reader.reset();
    written.get();
    EXPECT_EQ(DataStore(path_).get("a"), "2");
}

TEST_F(SharedStore, AWriterThatNeverGetsItsTurnSaysSo)
{
    DataStore(path_).set("a", "1");
    StoreTransaction holder(path_, Access::write);
    holder.set("a", "2");
    try {
        DataStore(path_).set("a", "3");
        FAIL() << "nothing thrown";
    } catch (const Kep::GenericException& error) {
        EXPECT_EQ(error.what(), "data store \"" + path_ + "\": database is locked");
    }
    holder.commit();
    EXPECT_EQ(DataStore(path_).get("a"), "2");
}

} // namespace
