// Reading one value: attempts, pauses, and which answers count.
#include "engine/ValueReader.h"

#include "Kep/Exception.h"
#include "Kep/Snmp/Factory.h"
#include "fakes/FakeSnmp.h"
#include "fakes/Journal.h"

#include <gmock/gmock.h>

namespace PrinterDiscoveryPlugin {
namespace {

using Fakes::answer;
using Fakes::noAnswer;
using Fakes::throwing;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string pause = "sleep 1000 ms";

class ValueOfAnAgent : public testing::Test {
protected:
    ValueOfAnAgent()
    {
        snmp_.agent("10.0.0.1");
        Kep::Snmp::Factory factory(Kep::Snmp::V3Engine::get());
        session_ = factory.create(nullptr);
        session_->open("10.0.0.1");
    }

    void onGet(const std::string& oid, std::vector<Fakes::SnmpReply> replies)
    {
        snmp_.agent("10.0.0.1").onGet(oid, std::move(replies));
    }

    /// Whether there is a value for one of `oids`; it is then in `out`.
    bool read(const std::vector<std::string>& oids)
    {
        journal_.clear();
        return getFirstValue(*session_, oids, out);
    }

    std::vector<std::string> asked() const { return journal_.texts(); }

    std::string out = "before";

private:
    Fakes::Journal journal_;
    Fakes::FakeSnmp snmp_;
    std::shared_ptr<Kep::Snmp::Session> session_;
};

TEST_F(ValueOfAnAgent, IsTheFirstThatThereIs)
{
    onGet(".1.1", {answer("one")});
    onGet(".1.2", {answer("two")});
    EXPECT_TRUE(read({".1.1", ".1.2"}));
    EXPECT_EQ(out, "one");
    EXPECT_THAT(asked(), ElementsAre("get .1.1"));
}

TEST_F(ValueOfAnAgent, IsAskedThreeTimesWithPausesBetween)
{
    EXPECT_FALSE(read({".1.1"}));
    EXPECT_EQ(out, "before");
    EXPECT_THAT(asked(), ElementsAre("get .1.1", pause, "get .1.1", pause, "get .1.1"));
}

TEST_F(ValueOfAnAgent, MayComeAtTheSecondAttempt)
{
    onGet(".1.1", {noAnswer(), answer("late")});
    EXPECT_TRUE(read({".1.1"}));
    EXPECT_EQ(out, "late");
    EXPECT_THAT(asked(), ElementsAre("get .1.1", pause, "get .1.1"));
}

TEST_F(ValueOfAnAgent, MayComeAtTheThirdAttempt)
{
    onGet(".1.1", {noAnswer(), noAnswer(), answer("later")});
    EXPECT_TRUE(read({".1.1"}));
    EXPECT_EQ(out, "later");
}

TEST_F(ValueOfAnAgent, HasNoFourthAttempt)
{
    onGet(".1.1", {noAnswer(), noAnswer(), noAnswer(), answer("too late")});
    EXPECT_FALSE(read({".1.1"}));
}

TEST_F(ValueOfAnAgent, FallsToTheNextOidWithoutAPause)
{
    onGet(".1.2", {answer("two")});
    EXPECT_TRUE(read({".1.1", ".1.2"}));
    EXPECT_EQ(out, "two");
    EXPECT_THAT(asked(), ElementsAre("get .1.1", pause, "get .1.1", pause, "get .1.1", "get .1.2"));
}

TEST_F(ValueOfAnAgent, IsNotTriedAgainWhenItIsEmpty)
{
    onGet(".1.1", {answer(""), answer("late")});
    onGet(".1.2", {answer("")});
    EXPECT_FALSE(read({".1.1", ".1.2"}));
    EXPECT_EQ(out, "before");
    EXPECT_THAT(asked(), ElementsAre("get .1.1", "get .1.2"));
}

TEST_F(ValueOfAnAgent, MayBeEmptyAfterAFailedAttempt)
{
    onGet(".1.1", {noAnswer(), answer(""), answer("late")});
    EXPECT_FALSE(read({".1.1"}));
    EXPECT_THAT(asked(), ElementsAre("get .1.1", pause, "get .1.1"));
}

TEST_F(ValueOfAnAgent, HasThreeAttemptsForEachOid)
{
    EXPECT_FALSE(read({".1.1", ".1.2"}));
    EXPECT_THAT(asked(), ElementsAre("get .1.1", pause, "get .1.1", pause, "get .1.1", "get .1.2", pause, "get .1.2",
                                     pause, "get .1.2"));
}

TEST_F(ValueOfAnAgent, OfNoOidIsNone)
{
    EXPECT_FALSE(read({}));
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(ValueOfAnAgent, MayBeANumber)
{
    onGet(".1.1", {answer(Kep::Variant::snmp(Kep::VariantType::snmpInteger, "4711"))});
    EXPECT_TRUE(read({".1.1"}));
    EXPECT_EQ(out, "4711");
}

TEST_F(ValueOfAnAgent, MayBeAnAddress)
{
    onGet(".1.1", {answer(Kep::Variant::snmp(Kep::VariantType::snmpIpAddress, "10.9.8.7"))});
    EXPECT_TRUE(read({".1.1"}));
    EXPECT_EQ(out, "10.9.8.7");
}

TEST_F(ValueOfAnAgent, MayBeOfNoBytesWhenItIsNoText)
{
    onGet(".1.1", {answer(Kep::Variant::snmp(Kep::VariantType::snmpOpaque, ""))});
    EXPECT_TRUE(read({".1.1"}));
    EXPECT_EQ(out, "");
}

TEST_F(ValueOfAnAgent, IsEightBitClean)
{
    const std::string bytes("\x00\xff\x80", 3);
    onGet(".1.1", {answer(bytes)});
    EXPECT_TRUE(read({".1.1"}));
    EXPECT_EQ(out, bytes);
}

TEST_F(ValueOfAnAgent, ThatIsNullThrowsAtOnce)
{
    onGet(".1.1", {answer(Kep::Variant()), answer("late")});
    EXPECT_THROW(read({".1.1"}), Kep::GenericException);
    EXPECT_EQ(out, "before");
    EXPECT_THAT(asked(), ElementsAre("get .1.1"));
}

TEST_F(ValueOfAnAgent, FailureThatIsNotSnmpsPassesAtOnce)
{
    onGet(".1.1", {throwing(Kep::GenericException("foreign"))});
    EXPECT_THROW(read({".1.1"}), Kep::GenericException);
    EXPECT_THAT(asked(), ElementsAre("get .1.1"));
}

} // namespace
} // namespace PrinterDiscoveryPlugin
