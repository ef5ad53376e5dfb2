#include "Sessions.h"

#include <gmock/gmock.h>

using namespace Ber;
using Kep::VariantType;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// What holds for SNMPv1 (0) and SNMPv2c (1) alike.
class Replies : public AgentTest, public testing::WithParamInterface<long> {
protected:
    Replies() { talkVersion(GetParam()); }

    static Message good(const Message& request) { return replyTo(request, {binding(sysDescr, octets("good"))}); }

    // The agent sends `first` and then the good answer.
    void agentSaysBeforeTheGoodAnswer(std::function<Answer(const Message& goodReply)> first)
    {
        agentSays([first = std::move(first)](const Message& request) {
            return Answers{first(good(request)), good(request).encoded()};
        });
    }

    void agentSaysOnly(std::function<Answer(const Message& goodReply)> only)
    {
        agentSays([only = std::move(only)](const Message& request) { return Answers{only(good(request))}; });
    }

    void expectEmptyText(const Kep::Variant& value)
    {
        EXPECT_EQ(value.type(), 10);
        EXPECT_TRUE(value.empty());
    }

    // What comes is passed over: a good answer after it counts, and alone it is no answer.
    void expectIgnored(const std::function<Answer(const Message& goodReply)>& nonsense)
    {
        agentSaysBeforeTheGoodAnswer(nonsense);
        EXPECT_EQ(getText(), "good");
        EXPECT_EQ(requestsSeen(), 1U);
        agentSaysOnly(nonsense);
        EXPECT_THAT(problemOfGet(), HasSubstr("answer in 2 tries of 100 ms"));
        EXPECT_EQ(requestsSeen(), 2U);
    }
};

INSTANTIATE_TEST_SUITE_P(Versions, Replies, testing::Values(0, 1));

Bytes exceptionValue(unsigned char tag)
{
    return tlv(tag, "");
}

Bytes changed(Bytes bytes, const Bytes& from, const Bytes& to)
{
    const std::size_t at = bytes.find(from);
    EXPECT_NE(at, Bytes::npos);
    return bytes.replace(at, from.size(), to);
}

} // namespace

TEST_P(Replies, BringTheValueOfTheOidAsked)
{
    agentSays([](const Message& request) {
        EXPECT_EQ(request.version, GetParam());
        EXPECT_EQ(request.community, testCommunity);
        EXPECT_EQ(request.pdu.tag, getTag);
        EXPECT_EQ(request.pdu.bindings, std::vector<Bytes>{binding(sysDescr, null())});
        return Answers{good(request).encoded()};
    });
    const Kep::Variant value = get();
    EXPECT_EQ(value.type(), 10);
    EXPECT_EQ(std::string(value), "good");
}

TEST_P(Replies, MayComeManyTimesInOneSession)
{
    agentSays([](const Message& request, std::size_t number) {
        return Answers{replyTo(request, {binding(sysDescr, octets(std::to_string(number)))}).encoded()};
    });
    EXPECT_EQ(getText(), "1");
    EXPECT_EQ(getText(), "2");
    EXPECT_EQ(getText(), "3");
}

TEST_P(Replies, WithoutTheObjectGiveAnEmptyText)
{
    for (const unsigned char tag : {nullTag, noSuchObjectTag, noSuchInstanceTag, endOfMibViewTag}) {
        agentGives(sysDescr, exceptionValue(tag));
        expectEmptyText(get());
    }
    agentFails(2); // noSuchName
    expectEmptyText(get());
}

TEST_P(Replies, ThatSayNoSuchNameMayLeaveTheBindingsOut)
{
    agentSays([](const Message& request) {
        Message reply = replyTo(request, {});
        reply.pdu.errorStatus = 2;
        return Answers{reply.encoded()};
    });
    expectEmptyText(get());
}

TEST_P(Replies, AreNotAskedForTextThatIsNoOid)
{
    agentGives(sysDescr, octets("unasked"));
    for (const char* text : {"", "sysDescr.0", "1.3.6.1", ".1.3.6.x"})
        expectEmptyText(get(text));
    EXPECT_EQ(requestsSeen(), 0U);
}

TEST_P(Replies, WithAnotherErrorStatusThrow)
{
    for (const long status : {1L, 3L, 5L, 16L, 99L, -1L}) {
        agentFails(status);
        EXPECT_THAT(problemOfGet(), HasSubstr("error status " + std::to_string(status)));
        EXPECT_THAT(problemOfNext(), HasSubstr("error status " + std::to_string(status)));
    }
}

TEST_P(Replies, ThatDoNotHaveExactlyOneBindingThrow)
{
    agentSays([](const Message& request) { return Answers{replyTo(request, {}).encoded()}; });
    EXPECT_THAT(problemOfGet(), HasSubstr("0 variable bindings"));
    EXPECT_THAT(problemOfNext(), HasSubstr("0 variable bindings"));
    agentSays([](const Message& request) {
        const Bytes one = binding(sysDescr, octets("one"));
        return Answers{replyTo(request, {one, one}).encoded()};
    });
    EXPECT_THAT(problemOfGet(), HasSubstr("2 variable bindings"));
    EXPECT_THAT(problemOfNext(), HasSubstr("2 variable bindings"));
}

TEST_P(Replies, ForAnotherOidThanAskedThrow)
{
    agentGives(sysObjectId, octets("of another object"));
    EXPECT_THAT(problemOfGet(), HasSubstr("answered for .1.3.6.1.2.1.1.2.0, asked for .1.3.6.1.2.1.1.1.0"));
    agentGives(sysObjectId, null());
    EXPECT_THAT(problemOfGet(), HasSubstr("answered for"));
}

TEST_P(Replies, WithAnotherRequestIdAreIgnored)
{
    expectIgnored([](Message reply) {
        reply.pdu.requestId ^= 1;
        return reply.encoded();
    });
}

TEST_P(Replies, WithAnotherCommunityAreIgnored)
{
    for (const char* community : {"", "perch", "perch-4712", "perch-47111"})
        expectIgnored([=](Message reply) {
            reply.community = community;
            return reply.encoded();
        });
}

TEST_P(Replies, OfAnotherVersionAreIgnored)
{
    for (const long version : {0L, 1L, 2L, 3L})
        if (version != GetParam())
            expectIgnored([=](Message reply) {
                reply.version = version;
                return reply.encoded();
            });
}

TEST_P(Replies, FromAnotherPortAreIgnored)
{
    expectIgnored([](const Message& reply) { return Answer(reply.encoded(), Answer::From::otherPort); });
}

TEST_P(Replies, FromAnotherAddressAreIgnored)
{
    expectIgnored([](const Message& reply) { return Answer(reply.encoded(), Answer::From::otherAddress); });
}

TEST_P(Replies, ThatAreNoResponsesAreIgnored)
{
    for (const unsigned char tag : {getTag, getNextTag, reportTag})
        expectIgnored([=](Message reply) {
            reply.pdu.tag = tag;
            return reply.encoded();
        });
}

TEST_P(Replies, ThatAreMalformedAreIgnored)
{
    const auto expectIgnoredWhenChanged = [&](const Bytes& from, const Bytes& to) {
        expectIgnored([=](const Message& reply) { return changed(reply.encoded(), from, to); });
    };
    expectIgnored([](const Message& reply) { return reply.encoded().substr(0, reply.encoded().size() - 1); });
    expectIgnored([](const Message&) { return Bytes(); });
    expectIgnored([](const Message&) { return Bytes("\x30"); });
    expectIgnored([](const Message&) { return Bytes("hello, this is no BER at all"); });
    expectIgnoredWhenChanged(octets("good"), tlv(0x4F, "good"));                 // an unknown type
    expectIgnoredWhenChanged(octets("good"), tlv(integerTag, "123456"));         // longer than the binding around it
    expectIgnoredWhenChanged(octets("good"), Bytes("\x04\x7Fgood"));             // runs out of the message
    expectIgnoredWhenChanged(octets("good"), Bytes("\x04\x84\xFF\xFF\xFF\xFF")); // so does this, by far
}

TEST_P(Replies, WithAnOverlongIntegerOrOidAreIgnored)
{
    const auto expectIgnoredValue = [&](const Bytes& value) {
        expectIgnored([=](Message reply) {
            reply.pdu.bindings = {binding(sysDescr, value)};
            return reply.encoded();
        });
    };
    expectIgnoredValue(tlv(integerTag, Bytes(20, '\x01')));
    expectIgnoredValue(tlv(oidTag, Bytes(200, '\x01')));
    expectIgnored([](Message reply) {
        reply.pdu.bindings = {sequence({tlv(oidTag, Bytes(200, '\x01')), octets("good")})};
        return reply.encoded();
    });
}

TEST_P(Replies, ThatAreUnreadableAreToldFromSilence)
{
    agentSaysOnly([](const Message&) { return Bytes("nonsense"); });
    EXPECT_THAT(problemOfGet(), HasSubstr("no readable answer"));
    agentSays([](const Message&) { return Answers(); });
    EXPECT_THAT(problemOfGet(), HasSubstr("no answer"));
}

TEST_P(Replies, MayTrailBytes)
{
    agentSaysOnly([](const Message& reply) { return reply.encoded() + Bytes("\0\0trailing", 10); });
    EXPECT_EQ(getText(), "good");
}

TEST_P(Replies, MayFillAWholeDatagram)
{
    static constexpr std::size_t datagram = 65507;
    agentSays([](const Message& request) {
        Message reply = good(request);
        const std::size_t overhead = replyTo(request, {binding(sysDescr, octets(Bytes(60000, 'x')))}).encoded().size();
        const Bytes value(60000 + datagram - overhead, 'x');
        reply.pdu.bindings = {binding(sysDescr, octets(value))};
        EXPECT_EQ(reply.encoded().size(), datagram);
        return Answers{reply.encoded()};
    });
    const std::string text = getText();
    EXPECT_GT(text.size(), 65400U);
    EXPECT_EQ(text.find_first_not_of('x'), std::string::npos);
}

TEST_P(Replies, AreNotLogged)
{
    testing::internal::CaptureStderr();
    agentSaysOnly([](const Message& reply) { return changed(reply.encoded(), octets("good"), tlv(0x4F, "good")); });
    EXPECT_THAT(problemOfGet(), Not(IsEmpty()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_P(Replies, LeaveTheCommunityOutOfMessages)
{
    agentFails(5);
    EXPECT_THAT(problemOfGet(), Not(HasSubstr(testCommunity)));
    agentSays([](const Message&) { return Answers(); });
    EXPECT_THAT(problemOfGet(), Not(HasSubstr(testCommunity)));
    EXPECT_THAT(problemOfGet(), HasSubstr("127.0.0.1:" + std::to_string(agent_->port())));
}

TEST_P(Replies, ComeForAnyCommunity)
{
    const std::string odd("\0\xFF\0", 3);
    for (const std::string& community : {std::string(), odd, std::string(255, 'c')}) {
        agentSays([=](const Message& request) {
            EXPECT_EQ(request.community, community);
            return Answers{good(request).encoded()};
        });
        session_ = openSession(communityProfile(GetParam(), agent_->port(), community));
        EXPECT_EQ(getText(), "good");
    }
}
