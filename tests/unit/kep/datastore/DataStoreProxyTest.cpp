#include "datastore/DataStoreProxy.h"

#include "Kep/Exception.h"
#include "Kep/Host/DataStore.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <vector>

namespace {

class StoreProxy : public testing::Test {
protected:
    void set(const std::string& key, const std::string& value) const { Kep::Host::DataStore(path_).set(key, value); }

    std::string subtree(std::string_view prefix) const
    {
        const auto transaction = Kep::makeDataStoreProxy(path_)->begin();
        const Kep::Variant values = transaction->getKeySubtree(prefix);
        transaction->commit();
        return values.toJson();
    }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(StoreProxy, GivesTheRestOfEachKeyDotIncludedInAscendingOrder)
{
    set("services.PrinterDiscovery.oidDeviceType", ".1.3");
    set("services.PrinterDiscovery.macAddressOids", ".1.4");
    set("services.PrinterDiscovery.deep.er", "x");
    EXPECT_EQ(subtree("services.PrinterDiscovery"),
              R"({".deep.er":"x",".macAddressOids":".1.4",".oidDeviceType":".1.3"})");
}

TEST_F(StoreProxy, ADotSeparatesPrefixAndRest)
{
    set("services.PrinterDiscovery", "itself");
    set("services.PrinterDiscovery2.x", "longer");
    set("services.PrinterDiscovery-.x", "sorts before the dot");
    set("services.PrinterDiscover.x", "shorter");
    EXPECT_EQ(subtree("services.PrinterDiscovery"), "{}");
    set("services.PrinterDiscovery.x", "1");
    EXPECT_EQ(subtree("services.PrinterDiscovery"), R"({".x":"1"})");
}

TEST_F(StoreProxy, PrefixesHoldNoWildcards)
{
    set("services.a.x", "1");
    EXPECT_EQ(subtree("services.%"), "{}");
    EXPECT_EQ(subtree("services._"), "{}");
    EXPECT_EQ(subtree("%"), "{}");
}

TEST_F(StoreProxy, TheSubtreeReadsLikeAnyValue)
{
    set("a.text", "v");
    const auto transaction = Kep::makeDataStoreProxy(path_)->begin();
    const Kep::Variant values = transaction->getKeySubtree("a");
    Kep::Variant value;
    EXPECT_TRUE(values.contains(".text", value));
    EXPECT_EQ(static_cast<std::string>(value), "v");
    EXPECT_FALSE(values.contains(".absent", value));
}

TEST_F(StoreProxy, WithoutAFileTheStoreIsEmpty)
{
    EXPECT_EQ(subtree("a"), "{}");
    EXPECT_FALSE(std::filesystem::exists(path_)) << "reading makes no file";
    path_ = "";
    EXPECT_EQ(subtree("a"), "{}");
}

TEST_F(StoreProxy, EachTransactionSeesTheStoreAsItIsWhenItBegins)
{
    const auto proxy = Kep::makeDataStoreProxy(path_);
    EXPECT_EQ(proxy->begin()->getKeySubtree("a").toJson(), "{}");
    set("a.x", "1");
    EXPECT_EQ(proxy->begin()->getKeySubtree("a").toJson(), R"({".x":"1"})");
}

TEST_F(StoreProxy, DropsItsHoldOnTheFileWhenDestroyedUncommitted)
{
    set("a.x", "1");
    {
        const auto transaction = Kep::makeDataStoreProxy(path_)->begin();
        transaction->getKeySubtree("a");
    }
    EXPECT_NO_THROW(set("a.x", "2"));
}

TEST_F(StoreProxy, ThreadsReadAtOnce)
{
    set("a.x", "1");
    const auto proxy = Kep::makeDataStoreProxy(path_);
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 4; ++reader) {
        readers.emplace_back([&proxy] {
            for (int round = 0; round < 50; ++round) {
                EXPECT_EQ(proxy->begin()->getKeySubtree("a").toJson(), R"({".x":"1"})");
            }
        });
    }
    for (auto& reader : readers) {
        reader.join();
    }
}

} // namespace
