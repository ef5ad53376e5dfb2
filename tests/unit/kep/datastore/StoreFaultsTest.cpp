// Writes that fail or are cut off at each place in turn: a transaction is there as a whole or not at all.
#include "Kep/Exception.h"
#include "datastore/StoreTransaction.h"
#include "tests/unit/kep/base/Messages.h"
#include "tests/unit/kep/datastore/FaultyFiles.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <sched.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Kep::Testing;
using Kep::StoreTransaction;
using Access = Kep::StoreTransaction::Access;

namespace {

const std::string done = "nothing thrown"; // what `messageOf` says of a call that succeeds
constexpr int mostCalls = 10'000;          // against tests that go on for ever

class FailingStore : public testing::Test {
protected:
    FailingStore() { writePair(path_, 1); }

    // Large enough for several pages of the file.
    static std::string valueOf(int number) { return std::to_string(number) + std::string(6000, 'x'); }

    static void writePair(const std::string& path, int number)
    {
        StoreTransaction transaction(path, Access::write);
        transaction.set("pair.a", valueOf(number));
        transaction.set("pair.b", valueOf(number));
        transaction.commit();
    }

    // The number that both keys hold; 0 when there are none.
    static int readPair(const std::string& path)
    {
        StoreTransaction transaction(path, Access::read);
        const std::string a = transaction.get("pair.a").value_or("0");
        EXPECT_EQ(a, transaction.get("pair.b").value_or("0")) << "half of a transaction is there";
        const int number = std::stoi(a);
        EXPECT_EQ(a, number == 0 ? "0" : valueOf(number)) << "half of a value is there";
        return number;
    }

    // Writes pair 2 over pair 1 with the `nth` call of that kind failing; what that says.
    // False when there were not so many calls.
    bool writeWithFailure(FileCall failing, int nth, int code, std::string& problem) const
    {
        int left = nth;
        const FaultyFiles files([&](FileCall call) { return call == failing && --left == 0 ? code : SQLITE_OK; });
        problem = messageOf([this] { writePair(path_, 2); });
        return left <= 0;
    }

    void failEach(FileCall failing, int code, const std::string& reason)
    {
        int failures = 0;
        std::string problem;
        for (int nth = 1; writeWithFailure(failing, nth, code, problem); ++nth) {
            ASSERT_LT(nth, mostCalls);
            const int found = readPair(path_);
            if (problem != done) {
                ++failures;
                EXPECT_EQ(problem, "data store \"" + path_ + "\": " + reason);
                EXPECT_EQ(found, 1);
            }
            writePair(path_, 1);
        }
        EXPECT_GT(failures, 0);
        EXPECT_EQ(readPair(path_), 2) << "the last write was not disturbed";
    }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(FailingStore, AFullDiskIsSaidAndKeepsTheOldContent)
{
    failEach(FileCall::write, SQLITE_FULL, "database or disk is full");
}

TEST_F(FailingStore, AFailingWriteKeepsTheOldContent)
{
    failEach(FileCall::write, SQLITE_IOERR_WRITE, "disk I/O error");
}

TEST_F(FailingStore, AFailingSyncKeepsTheOldContent)
{
    failEach(FileCall::sync, SQLITE_IOERR_FSYNC, "disk I/O error");
}

TEST_F(FailingStore, AFailingReadKeepsTheOldContent)
{
    failEach(FileCall::read, SQLITE_IOERR_READ, "disk I/O error");
}

TEST_F(FailingStore, AFileThatCannotBeOpenedKeepsTheOldContent)
{
    failEach(FileCall::open, SQLITE_CANTOPEN, "unable to open database file");
}

TEST_F(FailingStore, AJournalThatCannotBeRemovedLeavesNoHalves)
{
    failEach(FileCall::remove, SQLITE_IOERR_DELETE, "disk I/O error");
}

// Kills: each in a process of its own, with what the process was doing kept by the system, as it is for one that ends.
class KilledWriter : public FailingStore {
protected:
    template <class Work> static pid_t inProcess(Work work)
    {
        const pid_t child = fork();
        if (child == 0) {
            try {
                work();
            } catch (...) {
                _exit(1);
            }
            _exit(0);
        }
        return child;
    }

    // How the process ended, as `waitpid` tells.
    static int outcomeOf(pid_t child)
    {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return status;
    }

    bool leftAJournal() const { return std::filesystem::exists(path_ + "-journal"); }
};

TEST_F(KilledWriter, AtEachCallOnAFileLeavesNoHalves)
{
    int journals = 0;
    int nth = 1;
    for (; nth < mostCalls; ++nth) {
        const int status = outcomeOf(inProcess([&] {
            int left = nth;
            const FaultyFiles files([&left](FileCall) { return --left == 0 ? raise(SIGKILL) : SQLITE_OK; });
            writePair(path_, 2);
        }));
        journals += leftAJournal();
        const int found = readPair(path_);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), 0);
            EXPECT_EQ(found, 2);
            break;
        }
        EXPECT_EQ(WTERMSIG(status), SIGKILL);
        EXPECT_THAT(found, testing::AnyOf(1, 2));
        writePair(path_, 1);
    }
    EXPECT_GT(nth, 10);
    EXPECT_GT(journals, 5) << "kills that struck in the midst of a write";
}

TEST_F(KilledWriter, AtEachCallOfTheFirstWriteLeavesAStoreOrNone)
{
    for (int nth = 1; nth < mostCalls; ++nth) {
        std::filesystem::remove(path_);
        const int status = outcomeOf(inProcess([&] {
            int left = nth;
            const FaultyFiles files([&left](FileCall) { return --left == 0 ? raise(SIGKILL) : SQLITE_OK; });
            writePair(path_, 2);
        }));
        EXPECT_THAT(readPair(path_), testing::AnyOf(0, 2));
        writePair(path_, 3);
        EXPECT_EQ(readPair(path_), 3);
        if (WIFEXITED(status))
            return;
    }
    FAIL() << "the write never ended";
}

// Two processes write one pair each, over and over; one of them is killed at moments of no plan. Each says through a
// pipe what it has written.
class WritersBesideEachOther : public KilledWriter {
protected:
    static constexpr int kills = 200;

    struct Writer {
        pid_t process;
        int reports; // what was committed last is what was read last
        int last = 0;
    };

    static Writer startWriter(const std::string& path, int from)
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        const pid_t child = inProcess([&] {
            for (int number = from;; ++number) {
                writePair(path, number);
                if (write(ends[1], &number, sizeof number) != sizeof number)
                    return;
            }
        });
        close(ends[1]);
        return {child, ends[0]};
    }

    // False when the writer has gone.
    static bool readReport(Writer& writer)
    {
        return read(writer.reports, &writer.last, sizeof writer.last) == sizeof writer.last;
    }

    static void kill(Writer& writer)
    {
        ::kill(writer.process, SIGKILL);
        while (readReport(writer))
            continue;
        close(writer.reports);
        outcomeOf(writer.process);
    }
};

TEST_F(WritersBesideEachOther, KilledAtAnyMomentLoseNothingAndLeaveNoHalves)
{
    int number = 1;
    int journals = 0;
    for (int round = 0; round < kills; ++round) {
        Writer writer = startWriter(path_, number + 1);
        ASSERT_TRUE(readReport(writer));
        usleep(static_cast<useconds_t>(round * 7919 % 2000)); // spread over some writes
        kill(writer);
        journals += leftAJournal();
        number = readPair(path_);
        ASSERT_THAT(number, testing::AnyOf(writer.last, writer.last + 1)) << "what was committed is there";
    }
    EXPECT_GT(journals, kills / 20) << "kills that struck in the midst of a write";
}

TEST_F(WritersBesideEachOther, AKilledOneDoesNotDisturbTheOther)
{
    const std::string other = path_;
    constexpr int rounds = 20;
    int counted = 0;
    for (int round = 0; round < rounds; ++round) {
        Writer victim = startWriter(path_, 1);
        ASSERT_TRUE(readReport(victim));
        const pid_t survivor = inProcess([&] {
            for (int writes = 0; writes < 5; ++writes) {
                StoreTransaction transaction(other, Access::write);
                transaction.set("count", std::to_string(std::stoi(transaction.get("count").value_or("0")) + 1));
                transaction.commit();
            }
        });
        usleep(static_cast<useconds_t>(round * 7919 % 2000));
        kill(victim);
        EXPECT_EQ(outcomeOf(survivor), 0);
        counted += 5;
        readPair(path_);
    }
    EXPECT_EQ(StoreTransaction(path_, Access::read).get("count"), std::to_string(counted));
}

// A disk that is really full, in a namespace of the test's own.
class FullDisk : public KilledWriter {
protected:
    static void require(bool holds, const char* what)
    {
        if (!holds) {
            std::fprintf(stderr, "does not hold: %s (%s)\n", what, std::strerror(errno));
            _exit(1);
        }
    }
};

TEST_F(FullDisk, IsSaidAndKeepsTheOldContent)
{
    const std::string disk = folder_.path().string();
    const pid_t child = inProcess([&] {
        require(unshare(geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) == 0, "a namespace is to be had");
        require(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mounts stay in it");
        require(mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=96k") == 0, "a small disk is to be had");
        writePair(path_, 1);
        std::string problem = done;
        for (int key = 0; key < 100 && problem == done; ++key)
            problem = messageOf([&] {
                StoreTransaction transaction(path_, Access::write);
                transaction.set("pair.a", valueOf(2));
                transaction.set("more." + std::to_string(key), valueOf(key));
                transaction.set("pair.b", valueOf(2));
                transaction.commit();
            });
        require(problem == "data store \"" + path_ + "\": database or disk is full", problem.c_str());
        require(readPair(path_) == 2, "the last whole transaction is there");
    });
    EXPECT_EQ(outcomeOf(child), 0);
}

} // namespace
