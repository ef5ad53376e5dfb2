// A file that cannot be used is named with the reason, whether it is read or written.
#include "Kep/Host/DataStore.h"

#include "datastore/Connection.h"
#include "datastore/DataStoreProxy.h"
#include "tests/unit/kep/base/Messages.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

using Kep::Host::DataStore;

namespace {

class UnusableStore : public testing::Test {
protected:
    void expectUnusable(const std::string& reason)
    {
        const std::string before = content();
        const std::string expected = "data store \"" + path_ + "\": " + reason;
        EXPECT_EQ(messageOf([this] { DataStore(path_).list(""); }), expected);
        EXPECT_EQ(messageOf([this] { static_cast<void>(DataStore(path_).get("a")); }), expected);
        EXPECT_EQ(messageOf([this] { DataStore(path_).set("a", "s3cret"); }), expected);
        EXPECT_EQ(messageOf([this] { DataStore(path_).unset("a"); }), expected);
        EXPECT_EQ(messageOf([this] { Kep::makeDataStoreProxy(path_)->begin(); }), expected);
        EXPECT_EQ(content(), before) << "what cannot be used is kept as it is";
    }

    // The bytes of the file; empty for what is no file.
    std::string content() const
    {
        if (!std::filesystem::is_regular_file(path_)) {
            return {};
        }
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    void fill(int keys)
    {
        DataStore(path_).set("first", "value");
        Kep::Connection connection(path_);
        connection.execute("BEGIN");
        for (int key = 0; key < keys; ++key) {
            const std::string name = "key." + std::to_string(key);
            Kep::Statement(connection, "INSERT INTO setting VALUES (?1, ?1)", {name}).next();
        }
        connection.execute("COMMIT");
    }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(UnusableStore, AFileThatIsNoDatabase)
{
    folder_.write("store.db",
                  "this is a letter, not a database; it is long enough to be taken for one by nobody at all, "
                  "and goes on for more than a hundred bytes");
    expectUnusable("file is not a database");
}

TEST_F(UnusableStore, AFileThatWasCutShort)
{
    fill(10);
    std::filesystem::resize_file(path_, 50);
    expectUnusable("database disk image is malformed");
}

TEST_F(UnusableStore, ADamagedFile)
{
    fill(2000);
    const auto size = std::filesystem::file_size(path_);
    ASSERT_GT(size, 3u * 4096);
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(4096);
    file << std::string(size - 4096, '\xA5');
    file.close();
    const std::string expected = "data store \"" + path_ + "\": database disk image is malformed";
    EXPECT_EQ(messageOf([this] { DataStore(path_).list(""); }), expected);
    EXPECT_EQ(messageOf([this] { DataStore(path_).set("a", "b"); }), expected);
    EXPECT_EQ(messageOf([this] { Kep::makeDataStoreProxy(path_)->begin()->getKeySubtree("key"); }), expected);
}

TEST_F(UnusableStore, AFileOfZeros)
{
    folder_.write("store.db", std::string(3 * 4096, '\0'));
    expectUnusable("file is not a database");
}

// Damage that SQLite does not come across cannot be seen; what it comes across is said, and the file left alone.
TEST_F(UnusableStore, AFileDamagedAnywhereIsSaidOrReadAndNeverBegunAnew)
{
    fill(300);
    const std::string sound = content();
    int noticed = 0;
    for (std::size_t at = 0; at < sound.size(); at += 211) {
        std::string damaged = sound;
        for (std::size_t byte = at; byte < std::min(at + 64, sound.size()); ++byte) {
            damaged[byte] = static_cast<char>(~damaged[byte]);
        }
        folder_.write("store.db", damaged);
        const std::string named = "data store \"" + path_ + "\": ";
        const std::string reading = messageOf([this] { DataStore(path_).list(""); });
        EXPECT_EQ(content(), damaged) << "reading changes nothing";
        const std::string writing = messageOf([this] { DataStore(path_).set("new", "value"); });
        EXPECT_TRUE(reading == "nothing thrown" || reading.starts_with(named)) << reading;
        if (writing == "nothing thrown") {
            EXPECT_GE(content().size(), sound.size()) << "what was there is kept";
        } else {
            EXPECT_TRUE(writing.starts_with(named)) << writing;
            EXPECT_EQ(content(), damaged) << "a write that fails changes nothing";
        }
        noticed += reading != "nothing thrown" || writing != "nothing thrown";
    }
    EXPECT_GT(noticed, 10);
}

TEST_F(UnusableStore, AFolder)
{
    std::filesystem::create_directory(path_);
    expectUnusable("it is a folder");
}

TEST_F(UnusableStore, ANamedPipe)
{
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    expectUnusable("it is no regular file");
}

TEST_F(UnusableStore, APathThroughAFile)
{
    folder_.write("file", "x");
    path_ = folder_.file("file/store.db");
    expectUnusable("Not a directory");
}

TEST_F(UnusableStore, AMissingFolderCannotBeWrittenTo)
{
    path_ = folder_.file("missing/store.db");
    EXPECT_TRUE(DataStore(path_).list("").empty());
    EXPECT_EQ(messageOf([this] { DataStore(path_).set("a", "b"); }),
              "data store \"" + path_ + "\": No such file or directory");
}

TEST_F(UnusableStore, APathWithANulByte)
{
    const std::string expected = "the path of the data store holds a NUL byte";
    path_ += std::string("\0x", 2);
    EXPECT_EQ(messageOf([this] { DataStore(path_).list(""); }), expected);
    EXPECT_EQ(messageOf([this] { DataStore(path_).set("a", "b"); }), expected);
}

TEST_F(UnusableStore, ADatabaseOfAnotherProgram)
{
    folder_.write("store.db", "");
    Kep::Connection(path_).execute("CREATE TABLE letters (text)");
    expectUnusable("it is a database of another program");
}

TEST_F(UnusableStore, ANewerFormat)
{
    fill(1);
    Kep::Connection(path_).execute("PRAGMA user_version = 2");
    expectUnusable("its format 2 is newer than this program, which knows formats up to 1");
}

TEST_F(UnusableStore, AStoreThatLostItsTable)
{
    fill(1);
    Kep::Connection(path_).execute("DROP TABLE setting");
    EXPECT_EQ(messageOf([this] { DataStore(path_).list(""); }), "data store \"" + path_ + "\": SQL logic error");
}

// Runs as an ordinary user, for whom permissions count, in a process of its own.
class ForbiddenStore : public UnusableStore {
protected:
    static void becomeOrdinaryUser()
    {
        if (geteuid() == 0 && (setegid(65534) != 0 || seteuid(65534) != 0)) {
            std::_Exit(1);
        }
    }

    static void require(const std::string& found, const std::string& expected)
    {
        if (found != expected) {
            std::fprintf(stderr, "found %s, expected %s\n", found.c_str(), expected.c_str());
            std::_Exit(1);
        }
    }

    void SetUp() override
    {
        fill(1);
        std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
    }
};

TEST_F(ForbiddenStore, AFileThatMayNotBeRead)
{
    std::filesystem::permissions(path_, std::filesystem::perms::none);
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            const std::string expected = "data store \"" + path_ + "\": Permission denied";
            require(messageOf([this] { DataStore(path_).list(""); }), expected);
            require(messageOf([this] { DataStore(path_).set("a", "b"); }), expected);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ForbiddenStore, AFileThatMayOnlyBeRead)
{
    std::filesystem::permissions(path_, std::filesystem::perms(0444));
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            require(DataStore(path_).get("first").value_or("nothing"), "value");
            require(messageOf([this] { DataStore(path_).set("a", "b"); }),
                    "data store \"" + path_ + "\": attempt to write a readonly database");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ForbiddenStore, AFolderThatMayNotBeEntered)
{
    std::filesystem::permissions(folder_.path(), std::filesystem::perms(0600));
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            require(messageOf([this] { DataStore(path_).list(""); }),
                    "data store \"" + path_ + "\": Permission denied");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
    std::filesystem::permissions(folder_.path(), std::filesystem::perms(0700));
}

} // namespace
