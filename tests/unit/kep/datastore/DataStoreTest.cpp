#include "Kep/Host/DataStore.h"

#include "tests/unit/kep/base/Messages.h"
#include "tests/unit/support/Privacy.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

using Kep::Host::DataStore;
using Values = std::map<std::string, std::string>;

namespace {

class Store : public testing::Test {
protected:
    DataStore store() const { return DataStore(path_); }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(Store, KeepsWhatIsSet)
{
    store().set("host.snmp.timeout", "2.5");
    EXPECT_EQ(store().get("host.snmp.timeout"), "2.5");
    EXPECT_EQ(store().get("host.snmp"), std::nullopt);
    store().set("host.snmp.timeout", "3");
    EXPECT_EQ(store().list(""), (Values{{"host.snmp.timeout", "3"}}));
}

TEST_F(Store, ValuesAreTextsOfAnyBytes)
{
    const std::vector<std::string> values = {
        "", std::string("a\0b", 3), "\xFF\xFE", "'; DROP TABLE setting; --", std::string(100000, 'x'), "\xC3\xA4\n"};
    for (const std::string& value : values) {
        store().set("a.value", value);
        EXPECT_EQ(store().get("a.value"), value);
    }
}

TEST_F(Store, ListsByPrefixInAscendingOrder)
{
    for (const std::string key : {"b.2", "b.10", "a", "b.1", "c", "b-x", "bb"}) {
        store().set(key, "v" + key);
    }
    EXPECT_EQ(store().list("b."), (Values{{"b.1", "vb.1"}, {"b.10", "vb.10"}, {"b.2", "vb.2"}}));
    EXPECT_EQ(store().list("").size(), 7u);
    EXPECT_EQ(store().list("").begin()->first, "a");
    EXPECT_EQ(store().list("zz"), Values{});
}

TEST_F(Store, PrefixesHoldNoWildcards)
{
    store().set("host.x", "1");
    store().set("h_st.y", "2");
    EXPECT_EQ(store().list("h_st."), (Values{{"h_st.y", "2"}}));
    EXPECT_EQ(store().list("%"), Values{});
    EXPECT_EQ(store().list("h*"), Values{});
    EXPECT_EQ(store().list("HOST."), Values{}) << "case counts";
}

TEST_F(Store, UnsetTellsWhetherThereWasSomething)
{
    store().set("a", "1");
    store().set("b", "2");
    EXPECT_TRUE(store().unset("a"));
    EXPECT_FALSE(store().unset("a"));
    EXPECT_EQ(store().list(""), (Values{{"b", "2"}}));
}

TEST_F(Store, ChangesAreMadeTogether)
{
    store().set("old", "1");
    store().set("kept", "2");
    store().change({{"new", "3"}, {"kept", "4"}, {"old", std::nullopt}, {"absent", std::nullopt}});
    EXPECT_EQ(store().list(""), (Values{{"kept", "4"}, {"new", "3"}}));
    store().change({});
    EXPECT_EQ(store().list("").size(), 2u);
}

TEST_F(Store, ChangesAreMadeNotAtAllWhenOneIsRefused)
{
    store().set("a", "1");
    EXPECT_THROW(store().change({{"a", std::nullopt}, {"b", "2"}, {"not a key", "3"}}), Kep::GenericException);
    EXPECT_EQ(store().list(""), (Values{{"a", "1"}}));
}

TEST_F(Store, KeysAreWordsJoinedByDots)
{
    for (const std::string key : {"a", "host.names.dns", "services.PrinterDiscovery.oid-1_x"}) {
        EXPECT_NO_THROW(store().set(key, "v")) << key;
    }
    for (const std::string& key : {std::string(), std::string("."), std::string(".a"), std::string("a."),
                                   std::string("a..b"), std::string("a b"), std::string("a%"), std::string("a/b"),
                                   std::string("\xC3\xA4"), std::string("a\0b", 3), std::string("a\n")}) {
        EXPECT_THROW(store().set(key, "v"), Kep::GenericException) << key;
    }
    EXPECT_EQ(store().list("").size(), 3u);
    EXPECT_EQ(messageOf([this] { store().set("a..b", "s3cret"); }),
              "data store key \"a..b\": expected words of letters, digits, \"-\" and \"_\", joined by dots");
}

TEST_F(Store, AMissingFileReadsAsEmptyAndIsNotMade)
{
    EXPECT_EQ(store().list(""), Values{});
    EXPECT_EQ(store().get("a"), std::nullopt);
    EXPECT_FALSE(store().unset("a"));
    EXPECT_THROW(store().set("not a key", ""), Kep::GenericException);
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(Store, WithoutAFileReadsAsEmptyAndTakesNothing)
{
    DataStore none("");
    EXPECT_EQ(none.list(""), Values{});
    EXPECT_EQ(none.get("a"), std::nullopt);
    EXPECT_FALSE(none.unset("a"));
    EXPECT_EQ(messageOf([&none] { none.set("a", "b"); }), "there is no data store to write to");
}

TEST_F(Store, IsReadableByItsOwnerAlone)
{
    const NoUmask openHanded;
    store().set("a", "1");
    EXPECT_TRUE(isPrivate(path_));
    store().set("a", "2");
    EXPECT_TRUE(isPrivate(path_));
}

TEST_F(Store, LeavesNoOtherFileBehind)
{
    store().set("a", "1");
    store().unset("a");
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
        ++files;
        EXPECT_EQ(entry.path().generic_string(), path_);
    }
    EXPECT_EQ(files, 1u);
}

TEST_F(Store, AnEmptyFileIsAnEmptyStore)
{
    folder_.write("store.db", "");
    EXPECT_EQ(store().list(""), Values{});
    store().set("a", "1");
    EXPECT_EQ(store().get("a"), "1");
}

TEST_F(Store, RelativeAndOddNamesAreFiles)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    for (const std::string name : {"sto re.db", "\xC3\xA4.db"}) {
        DataStore(name).set("a", name);
        EXPECT_EQ(DataStore(name).get("a"), name);
        EXPECT_TRUE(std::filesystem::exists(folder_.path() / std::u8string(name.begin(), name.end()))) << name;
    }
    std::filesystem::current_path(before);
}

TEST_F(Store, MovesWithItsFile)
{
    DataStore first(path_);
    first.set("a", "1");
    const DataStore second(std::move(first));
    EXPECT_EQ(second.get("a"), "1");
}

} // namespace
