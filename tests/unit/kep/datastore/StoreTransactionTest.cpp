#include "datastore/StoreTransaction.h"

#include "Kep/Exception.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using Kep::StoreTransaction;
using Access = Kep::StoreTransaction::Access;

namespace {

class Transactions : public testing::Test {
protected:
    void put(const std::string& key, const std::string& value) const
    {
        StoreTransaction transaction(path_, Access::write);
        transaction.set(key, value);
        transaction.commit();
    }

    std::map<std::string, std::string> content() const { return StoreTransaction(path_, Access::read).list(""); }

    TestSupport::TemporaryFolder folder_;
    std::string path_ = folder_.file("store.db");
};

TEST_F(Transactions, AllOfOneIsThereOnceItIsCommitted)
{
    put("a", "1");
    StoreTransaction transaction(path_, Access::write);
    transaction.set("b", "2");
    transaction.unset("a");
    EXPECT_EQ(transaction.list(""), (std::map<std::string, std::string>{{"b", "2"}})) << "sees its own changes";
    transaction.commit();
    EXPECT_EQ(content(), (std::map<std::string, std::string>{{"b", "2"}}));
}

TEST_F(Transactions, DestroyedBeforeCommitLeavesTheStoreAsItWas)
{
    put("a", "1");
    {
        StoreTransaction transaction(path_, Access::write);
        transaction.set("a", "2");
        transaction.set("b", "2");
    }
    EXPECT_EQ(content(), (std::map<std::string, std::string>{{"a", "1"}}));
}

TEST_F(Transactions, ANewStoreThatWasNotCommittedIsEmptyAndUsable)
{
    {
        StoreTransaction transaction(path_, Access::write);
        transaction.set("a", "1");
    }
    EXPECT_TRUE(content().empty());
    put("b", "2");
    EXPECT_EQ(content(), (std::map<std::string, std::string>{{"b", "2"}}));
}

} // namespace
