// Names and rights of files that other systems do not have.
#include "Kep/Host/DataStore.h"
#include "datastore/StoreTransaction.h"
#include "tests/unit/support/Privacy.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

TEST(StoreNames, ThatSqliteTakesForSomethingElseAreFiles)
{
    const TestSupport::TemporaryFolder folder;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (const std::string name : {":memory:", "file:x?mode=memory"}) {
        Kep::Host::DataStore(name).set("a", name);
        EXPECT_EQ(Kep::Host::DataStore(name).get("a"), name);
        EXPECT_TRUE(std::filesystem::exists(folder.file(name))) << name;
    }
    std::filesystem::current_path(before);
}

TEST(StoreJournals, AreReadableByTheOwnerAlone)
{
    const TestSupport::TemporaryFolder folder;
    const std::string path = folder.file("store.db");
    Kep::Host::DataStore(path).set("a", "1");
    const NoUmask openHanded;
    Kep::StoreTransaction transaction(path, Kep::StoreTransaction::Access::write);
    transaction.set("a", "2");
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_TRUE(isPrivate(entry.path())) << entry.path();
        ++files;
    }
    EXPECT_EQ(files, 2U) << "the store and its journal";
}

} // namespace
