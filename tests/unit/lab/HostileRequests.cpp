#include "lab/Agent.h"
#include "lab/Snmprec.h"
#include "tests/unit/lab/NetSnmpManager.h"

#include <gmock/gmock.h>

#include <memory>
#include <random>

namespace Lab {
namespace {

Bytes concat(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes integer(std::int64_t value)
{
    return encodeElement(Tag::integer, encodeSigned(value));
}

/// A request whose every part can be spoilt.
struct Parts {
    Bytes version = integer(1);
    Bytes community = encodeElement(Tag::octetString, Bytes{'p', 'u', 'b', 'l', 'i', 'c'});
    std::uint8_t pdu = Tag::getRequest;
    Bytes requestId = integer(1);
    Bytes status = integer(0);
    Bytes index = integer(0);
    Bytes oid = encodeElement(Tag::objectId, Bytes{0x2B, 6, 1, 2, 1, 1, 1, 0});
    Bytes value = {Tag::null, 0};
    Bytes afterVarbind{};
    Bytes afterList{};
    Bytes afterPdu{};
    Bytes afterMessage{};

    [[nodiscard]] Bytes datagram() const
    {
        const Bytes varbind = encodeElement(Tag::sequence, concat({oid, value, afterVarbind}));
        const Bytes list = encodeElement(Tag::sequence, varbind);
        const Bytes body = encodeElement(pdu, concat({requestId, status, index, list, afterList}));
        return concat({encodeElement(Tag::sequence, concat({version, community, body, afterPdu})), afterMessage});
    }
};

class HostileRequests : public testing::Test {
protected:
    /// The size of the answer. Request and room lie in blocks of exactly their size, so that sanitizers see every byte
    /// beyond.
    std::size_t answerTo(const Bytes& datagram)
    {
        const auto exact = std::make_unique<std::uint8_t[]>(datagram.size());
        std::copy(datagram.begin(), datagram.end(), exact.get());
        return _agent.answer({exact.get(), datagram.size()}, _device, _out);
    }

    std::size_t answerTo(const Parts& parts) { return answerTo(parts.datagram()); }

    Device _device{readSnmprec("device", "device", "1.3.6.1.2.1.1.1.0|4|a device\n"), parseIpv4("127.0.0.1").value(),
                   Individuality::ByAddress};
    Agent _agent{"public"};
    Bytes _out = Bytes(65507);
};

TEST_F(HostileRequests, TheUnspoiltOneIsAnswered)
{
    EXPECT_GT(answerTo(Parts{}), 0U);
    EXPECT_GT(answerTo(Testing::encode({SNMP_VERSION_1, SNMP_MSG_GETNEXT, {"1.3.6"}, "public", 1})), 0U);
}

TEST_F(HostileRequests, ATruncatedOneIsNotAnsweredAtAnyLength)
{
    const Bytes whole = Testing::encode(
        {SNMP_VERSION_2c, SNMP_MSG_GET, std::vector<std::string>(20, "1.3.6.1.2.1.1.1.0"), "public", 70000});
    ASSERT_GT(answerTo(whole), 0U);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(answerTo(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), 0U) << size;
}

TEST_F(HostileRequests, TrailingBytesAreNotAnsweredAnywhere)
{
    const Bytes trailing{Tag::null, 0};
    EXPECT_EQ(answerTo(Parts{.afterVarbind = trailing}), 0U);
    EXPECT_EQ(answerTo(Parts{.afterList = trailing}), 0U);
    EXPECT_EQ(answerTo(Parts{.afterPdu = trailing}), 0U);
    EXPECT_EQ(answerTo(Parts{.afterMessage = trailing}), 0U);
}

/// Every byte of a request in turn takes every value: whatever that makes of lengths and tags, an answer is only ever
/// given to what net-snmp can read, too.
TEST_F(HostileRequests, LyingLengthsAndTagsDoNoHarm)
{
    const Bytes whole = Parts{}.datagram();
    for (std::size_t position = 0; position < whole.size(); ++position)
        for (unsigned value = 0; value < 256; ++value) {
            Bytes spoilt = whole;
            spoilt[position] = static_cast<std::uint8_t>(value);
            const std::size_t size = answerTo(spoilt);
            if (size > 0) {
                EXPECT_NO_THROW(Testing::decode(Bytes(_out.begin(), _out.begin() + static_cast<std::ptrdiff_t>(size))))
                    << position << " " << value;
            }
        }
}

TEST_F(HostileRequests, ALengthThatLiesIsNotAnswered)
{
    const Bytes whole = Parts{}.datagram();
    constexpr std::size_t messageLength = 1;
    constexpr std::size_t communityLength = 6;
    for (const std::size_t position : {messageLength, communityLength})
        for (unsigned value = 0; value < 256; ++value) {
            if (value == whole[position])
                continue;
            Bytes spoilt = whole;
            spoilt[position] = static_cast<std::uint8_t>(value);
            EXPECT_EQ(answerTo(spoilt), 0U) << position << " " << value;
        }
}

TEST_F(HostileRequests, HugeOidsAreNotAnswered)
{
    const auto oidOf = [](const Bytes& contents) { return Parts{.oid = encodeElement(Tag::objectId, contents)}; };
    EXPECT_GT(answerTo(oidOf(Bytes(127, 1))), 0U) << "128 arcs";
    EXPECT_EQ(answerTo(oidOf(Bytes(128, 1))), 0U) << "129 arcs";
    EXPECT_EQ(answerTo(oidOf(Bytes(60000, 1))), 0U);
    EXPECT_EQ(answerTo(oidOf(Bytes(60000, 0xFF))), 0U);
    EXPECT_EQ(answerTo(oidOf(Bytes{0x2B, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F})), 0U) << "an arc beyond 32 bits";
    EXPECT_EQ(answerTo(oidOf({})), 0U) << "no arc";
}

TEST_F(HostileRequests, LongIntegersAreNotAnswered)
{
    const Bytes nine = encodeElement(Tag::integer, Bytes(9, 1));
    const Bytes none = encodeElement(Tag::integer, Bytes{});
    for (const Bytes& number : {nine, none}) {
        EXPECT_EQ(answerTo(Parts{.version = number}), 0U);
        EXPECT_EQ(answerTo(Parts{.requestId = number}), 0U);
        EXPECT_EQ(answerTo(Parts{.status = number}), 0U);
        EXPECT_EQ(answerTo(Parts{.index = number}), 0U);
    }
}

TEST_F(HostileRequests, OtherVersionsAreNotAnswered)
{
    for (const int version : {-1, 2, 3, 256, 65536})
        EXPECT_EQ(answerTo(Parts{.version = integer(version)}), 0U) << version;
}

TEST_F(HostileRequests, OtherTagsAreNotAnswered)
{
    EXPECT_EQ(answerTo(Parts{.version = {Tag::octetString, 1, 1}}), 0U);
    EXPECT_EQ(answerTo(Parts{.community = {Tag::opaque, 6, 'p', 'u', 'b', 'l', 'i', 'c'}}), 0U);
    EXPECT_EQ(answerTo(Parts{.oid = {Tag::octetString, 1, 0x2B}}), 0U);
    EXPECT_EQ(answerTo(Parts{.pdu = 0xA5}), 0U);
    EXPECT_EQ(answerTo(Parts{.value = {0x1F, 0x01, 0x00}}), 0U) << "a tag of several bytes";
    EXPECT_EQ(answerTo(Parts{.value = {0x04, 0x80, 0, 0}}), 0U) << "an indefinite length";
    EXPECT_EQ(answerTo(Parts{.value = {}}), 0U) << "no value";
}

TEST_F(HostileRequests, AVarbindsValueMayBeAnythingWellFormed)
{
    EXPECT_GT(answerTo(Parts{.value = {Tag::octetString, 2, 'h', 'i'}}), 0U);
}

/// The largest answer that a request could provoke is larger than a datagram: silence, and nothing written beyond.
TEST_F(HostileRequests, AnAnswerBeyondADatagramIsNotGiven)
{
    Bytes list;
    const Bytes varbind = encodeElement(Tag::sequence, Bytes{Tag::objectId, 1, 0x2B, Tag::null, 0});
    while (list.size() + varbind.size() < 65000)
        list.insert(list.end(), varbind.begin(), varbind.end());
    const Parts parts;
    const Bytes pdu = encodeElement(
        Tag::getNextRequest, concat({parts.requestId, parts.status, parts.index, encodeElement(Tag::sequence, list)}));
    EXPECT_EQ(answerTo(encodeElement(Tag::sequence, concat({parts.version, parts.community, pdu}))), 0U);
}

TEST_F(HostileRequests, RandomBytesAreNotAnswered)
{
    std::mt19937 random(20261121);
    for (int i = 0; i < 20000; ++i) {
        Bytes noise(random() % 200);
        for (std::uint8_t& byte : noise)
            byte = static_cast<std::uint8_t>(random());
        EXPECT_EQ(answerTo(noise), 0U);
    }
}

/// Several spoilt bytes at once, as a fuzzer would.
TEST_F(HostileRequests, RandomlySpoiltRequestsDoNoHarm)
{
    std::mt19937 random(31);
    const Bytes whole = Testing::encode({SNMP_VERSION_2c, SNMP_MSG_GETNEXT, {"1.3.6", "1.3.6.1.2"}, "public", 99});
    for (int i = 0; i < 50000; ++i) {
        Bytes spoilt = whole;
        for (unsigned n = random() % 4 + 1; n > 0; --n)
            spoilt[random() % spoilt.size()] = static_cast<std::uint8_t>(random());
        ASSERT_LE(answerTo(spoilt), 200U);
    }
}

} // namespace
} // namespace Lab
