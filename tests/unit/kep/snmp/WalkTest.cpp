#include "Sessions.h"

#include <gmock/gmock.h>

using namespace Ber;
using testing::HasSubstr;

namespace {

class Walks : public AgentTest, public testing::WithParamInterface<long> {
protected:
    Walks() { talkVersion(GetParam()); }

    void expectPastTheEnd(const std::string& oid = sysDescr)
    {
        const Step step = next(oid);
        EXPECT_EQ(step.oid, oid);
        EXPECT_TRUE(step.value.isNull());
    }
};

INSTANTIATE_TEST_SUITE_P(Versions, Walks, testing::Values(0, 1));

} // namespace

TEST_P(Walks, GoToTheNextOid)
{
    agentSays([](const Message& request) {
        EXPECT_EQ(request.pdu.tag, getNextTag);
        EXPECT_EQ(request.pdu.firstOid(), sysDescr);
        return Answers{replyTo(request, {binding(sysObjectId, oid(".1.3.6.1.4.1.8072"))}).encoded()};
    });
    const Step step = next();
    EXPECT_EQ(step.oid, sysObjectId);
    EXPECT_EQ(step.value.type(), 10);
    EXPECT_EQ(std::string(step.value), ".1.3.6.1.4.1.8072");
}

TEST_P(Walks, EndAlikeInEveryVersion)
{
    agentFails(2); // noSuchName
    expectPastTheEnd();
    for (const unsigned char tag : {endOfMibViewTag, nullTag, noSuchObjectTag, noSuchInstanceTag}) {
        agentGives(sysDescr, tlv(tag, ""));
        expectPastTheEnd();
        agentGives(sysObjectId, tlv(tag, ""));
        expectPastTheEnd();
    }
}

TEST_P(Walks, GiveTheOidBackAsItWasGivenAtTheEnd)
{
    agentGives(".1.3.6.7", tlv(endOfMibViewTag, ""));
    expectPastTheEnd(".1.3.6.007");
}

TEST_P(Walks, DoNotGoBack)
{
    for (const char* below : {".1.3.6.1.2.1.1.0.9", ".1.3.6.1.2.1.1.1", ".0.0"}) {
        agentGives(below, octets("below"));
        EXPECT_THAT(problemOfNext(), HasSubstr("went back")) << below;
    }
}

TEST_P(Walks, DeliverAnAgentThatStaysWhereItIs)
{
    agentGives(sysDescr, octets("the same"));
    const Step step = next();
    EXPECT_EQ(step.oid, sysDescr);
    EXPECT_EQ(std::string(step.value), "the same");
}

TEST_P(Walks, MayReadAndWriteTheSameText)
{
    agentGives(sysObjectId, octets("next"));
    std::string current = sysDescr;
    Kep::Variant value;
    session()->getNext(current, current, value);
    EXPECT_EQ(current, sysObjectId);
    agentGives(sysObjectId, tlv(endOfMibViewTag, ""));
    session()->getNext(current, current, value);
    EXPECT_EQ(current, sysObjectId);
    EXPECT_TRUE(value.isNull());
}

TEST_P(Walks, WantAnOid)
{
    agentGives(sysObjectId, octets("next"));
    for (const char* text : {"", "sysDescr.0", ".1.3.x"})
        EXPECT_THAT(problemOfNext(text), HasSubstr("is no object identifier")) << text;
    EXPECT_EQ(requestsSeen(), 0U);
}

TEST_P(Walks, LeaveTheResultsAloneWhenTheyFail)
{
    agentFails(5);
    std::string oid = "untouched";
    Kep::Variant value("untouched");
    EXPECT_THROW(session()->getNext(sysDescr, oid, value), Kep::Snmp::Exception);
    EXPECT_THROW(session()->get(sysDescr, value), Kep::Snmp::Exception);
    EXPECT_EQ(oid, "untouched");
    EXPECT_EQ(std::string(value), "untouched");
}

TEST_P(Walks, TakeAtMost4096Steps)
{
    agentGives(sysDescr, octets("for ever"));
    for (int step = 0; step < 4096; ++step)
        ASSERT_EQ(next().oid, sysDescr);
    EXPECT_THAT(problemOfNext(), HasSubstr("4096 get-next requests"));
    EXPECT_EQ(requestsSeen(), 4096U);
    EXPECT_EQ(getText(), "for ever");
    session_.reset();
    EXPECT_EQ(next().oid, sysDescr) << "the budget is the session's own";
}
