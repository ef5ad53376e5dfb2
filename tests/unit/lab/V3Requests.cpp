// Requests of version 3, byte by byte, and what the agent makes of them.
#include "lab/Snmprec.h"
#include "lab/V3Agent.h"
#include "lab/hostile/Packet.h"

#include <gmock/gmock.h>

#include <memory>

namespace Lab {
namespace {

const Oid description{1, 3, 6, 1, 2, 1, 1, 1, 0};

class V3Requests : public testing::Test {
protected:
    /// A request as a manager makes it that knows the engine.
    V3Message request(std::uint8_t pdu = Tag::getRequest, const Oid& oid = description) const
    {
        V3Message message;
        message.messageId = 4711;
        message.flags = V3Flag::reportable;
        message.engine = message.contextEngine = V3Agent::engineIdOf(_device);
        message.user = Bytes{'p', 'u', 'b', 'l', 'i', 'c'};
        const Bytes null{Tag::null, 0};
        const Bytes binding = concatenate({encodeElement(Tag::objectId, encodeOidContents(oid)), null});
        const Bytes list = encodeElement(Tag::sequence, encodeElement(Tag::sequence, binding));
        message.pdu =
            encodeElement(pdu, concatenate({integerElement(815), integerElement(0), integerElement(0), list}));
        return message;
    }

    std::optional<V3Message> answerTo(const V3Message& message) { return V3Message::read(answerTo(message.encoded())); }

    /// Request and room lie in blocks of exactly their size, so that sanitizers see every byte beyond.
    Bytes answerTo(const Bytes& datagram)
    {
        const auto exact = std::make_unique<std::uint8_t[]>(datagram.size());
        std::copy(datagram.begin(), datagram.end(), exact.get());
        Bytes out(65507);
        out.resize(_agent.answer({exact.get(), datagram.size()}, _device, out));
        return out;
    }

    void expectReport(const V3Message& message, const Oid& counter)
    {
        const auto report = answerTo(message);
        ASSERT_TRUE(report);
        EXPECT_EQ(report->messageId, message.messageId);
        EXPECT_EQ(report->flags, 0);
        EXPECT_EQ(report->engine, V3Agent::engineIdOf(_device));
        const auto packet = Packet::read(report->encoded());
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->pdu, Tag::report);
        EXPECT_EQ(packet->oid(), counter);
        EXPECT_EQ(packet->requestId, integerElement((message.flags & V3Flag::encrypted) == 0 ? 815 : 0));
    }

    Device _device{readSnmprec("device", "device", "1.3.6.1.2.1.1.1.0|4|a device\n1.3.6.1.2.1.31.1|70|7\n"),
                   parseIpv4("127.1.2.3").value(), Individuality::ByAddress};
    V3Agent _agent{"public"};
};

TEST_F(V3Requests, AreAnsweredAsInVersion2c)
{
    for (const Oid& oid : {description, Oid{1, 3, 6, 1, 2, 1, 31, 1}}) {
        const auto answer = answerTo(request(Tag::getRequest, oid));
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->messageId, 4711);
        EXPECT_EQ(answer->flags, 0);
        EXPECT_EQ(answer->user, request().user);
        const auto packet = Packet::read(answer->encoded());
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->pdu, Tag::response);
        EXPECT_EQ(packet->requestId, integerElement(815));
        EXPECT_EQ(packet->errorStatus, integerElement(0));
        EXPECT_EQ(packet->oid(), oid);
        EXPECT_EQ(packet->bindings.at(0).value, _device.profile().find(oid)->encodedValue);
    }
    const auto end = Packet::read(answerTo(request(Tag::getNextRequest, {2, 1}))->encoded());
    EXPECT_EQ(end->bindings.at(0).value, (Bytes{Tag::endOfMibView, 0}));
}

TEST_F(V3Requests, OfAnUnknownEngineLearnTheRightOne)
{
    EXPECT_EQ(V3Agent::engineIdOf(_device), (Bytes{0x80, 0x01, 0x86, 0x3D, 0x01, 127, 1, 2, 3}));
    V3Message message = request();
    message.engine.clear();
    message.user.clear();
    expectReport(message, V3Report::unknownEngineIds);
    message.engine = Bytes(32, 'e');
    expectReport(message, V3Report::unknownEngineIds);
}

TEST_F(V3Requests, OfOthersAreReportedUnknown)
{
    V3Message message = request();
    message.user.push_back('x');
    expectReport(message, V3Report::unknownUserNames);
    message = request();
    message.context = {'c'};
    expectReport(message, V3Report::unknownContexts);
    message = request();
    message.contextEngine.push_back(0);
    expectReport(message, V3Report::unknownContexts);
}

TEST_F(V3Requests, WithAuthenticationAreReportedUnsupported)
{
    V3Message message = request();
    message.flags = V3Flag::reportable | V3Flag::authenticated;
    expectReport(message, V3Report::unsupportedSecurityLevels);
}

TEST_F(V3Requests, ThatAreEncryptedAreReportedUnsupported)
{
    V3Message message = request();
    message.flags = V3Flag::reportable | V3Flag::authenticated | V3Flag::encrypted;
    Bytes datagram = message.encoded();
    const Bytes scope =
        encodeElement(Tag::sequence, concatenate({encodeElement(Tag::octetString, message.contextEngine),
                                                  encodeElement(Tag::octetString, {}), message.pdu}));
    const auto at = std::search(datagram.begin(), datagram.end(), scope.begin(), scope.end());
    ASSERT_NE(at, datagram.end());
    *at = Tag::octetString;
    const auto report = Packet::read(answerTo(datagram));
    ASSERT_TRUE(report);
    EXPECT_EQ(report->oid(), V3Report::unsupportedSecurityLevels);
    EXPECT_EQ(report->requestId, integerElement(0));
}

TEST_F(V3Requests, ThatWantNoReportsMeetSilence)
{
    V3Message message = request();
    message.flags = 0;
    EXPECT_TRUE(answerTo(message));
    message.engine.clear();
    EXPECT_FALSE(answerTo(message));
}

TEST_F(V3Requests, ForWhichThereIsNoRoomMeetSilence)
{
    const Bytes datagram = request().encoded();
    const std::size_t needed = answerTo(datagram).size();
    ASSERT_GT(needed, 0U);
    Bytes out(needed - 1);
    EXPECT_EQ(_agent.answer(datagram, _device, out), 0U);
}

TEST_F(V3Requests, ThatAreCutAreNotAnswered)
{
    const Bytes whole = request().encoded();
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(answerTo(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))).empty()) << size;
}

/// Every byte in turn takes every value; what is answered is a message.
TEST_F(V3Requests, WithLyingLengthsAndTagsDoNoHarm)
{
    const Bytes whole = request().encoded();
    for (std::size_t position = 0; position < whole.size(); ++position)
        for (unsigned value = 0; value < 256; ++value) {
            Bytes spoilt = whole;
            spoilt[position] = static_cast<std::uint8_t>(value);
            const Bytes answer = answerTo(spoilt);
            EXPECT_TRUE(answer.empty() || V3Message::read(answer)) << position << " " << value;
        }
}

} // namespace
} // namespace Lab
