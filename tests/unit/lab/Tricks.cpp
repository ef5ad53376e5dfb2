// Each trick of the hostile devices does what its name says.
#include "lab/hostile/Tricks.h"
#include "lab/Agent.h"
#include "lab/V3Agent.h"
#include "lab/WellKnownOids.h"
#include "lab/hostile/HostileProfiles.h"
#include "lab/hostile/Packet.h"
#include "tests/unit/lab/NetSnmpManager.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

namespace Lab {
namespace {

using Replies = std::vector<Reply>;
using testing::IsEmpty;
using testing::SizeIs;

class Tricks : public testing::Test {
protected:
    void play(const std::string& name) { _trick = findProfile(_profiles, name)->makeTrick(); }

    Replies repliesTo(const Bytes& request)
    {
        _honest.resize(65507);
        std::size_t size = _agent.answer(request, _device, _honest);
        if (size == 0)
            size = _v3Agent.answer(request, _device, _honest);
        _honest.resize(size);
        EXPECT_GT(size, 0U);
        return _trick({request, _honest});
    }

    static Bytes request(int type, const std::string& oid, long id = 4711)
    {
        return Testing::encode({SNMP_VERSION_2c, type, {oid}, "public", id});
    }

    Replies get(const std::string& oid = "1.3.6.1.2.1.1.1.0") { return repliesTo(request(SNMP_MSG_GET, oid)); }
    Replies getNext(const std::string& oid) { return repliesTo(request(SNMP_MSG_GETNEXT, oid)); }

    /// The only reply to a get, which is sent at once from where it should be.
    Bytes spoilt()
    {
        const Replies replies = get();
        EXPECT_THAT(replies, SizeIs(1));
        EXPECT_EQ(replies.at(0).delay.count(), 0);
        EXPECT_EQ(replies.at(0).from, Reply::From::AddressAsked);
        return replies.at(0).datagram;
    }

    static bool isReadable(const Bytes& message)
    {
        try {
            Testing::decode(message);
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    }

    void expectUnreadable(const std::string& name, int ways)
    {
        play(name);
        for (int way = 0; way < 2 * ways; ++way)
            EXPECT_FALSE(isReadable(spoilt())) << name << " " << way;
    }

    /// The rows that a walk of the device types sees.
    std::vector<std::string> walk(const std::string& name, int steps)
    {
        play(name);
        std::vector<std::string> rows;
        std::string at = "1.3.6.1.2.1.25.3.2.1.2";
        for (int step = 0; step < steps; ++step) {
            const auto answered = Testing::decode(getNext(at).at(0).datagram).varbinds.at(0);
            EXPECT_EQ(answered.text, ".1.3.6.1.2.1.25.3.1.3");
            at = answered.oid.substr(1);
            rows.push_back(at.substr(at.rfind('.') + 1));
        }
        return rows;
    }

    V3Message v3Request(const Bytes& engine) const
    {
        V3Message message;
        message.messageId = 1;
        message.flags = V3Flag::reportable;
        message.engine = message.contextEngine = engine;
        message.user = {'p', 'u', 'b', 'l', 'i', 'c'};
        message.pdu = encodeElement(
            Tag::getRequest,
            concatenate({integerElement(1), integerElement(0), integerElement(0), encodeElement(Tag::sequence, {})}));
        return message;
    }

    V3Message v3Reply(const Bytes& engine)
    {
        return *V3Message::read(repliesTo(v3Request(engine).encoded()).at(0).datagram);
    }

    static Oid counterOf(const V3Message& report) { return Packet::read(report.encoded())->oid().value(); }

    ProfileLibrary _profiles = hostileProfiles();
    Device _device{findProfile(builtInProfiles(), "laser-mono"), parseIpv4("127.1.2.3").value(),
                   Individuality::Verbatim};
    const Bytes _engine = V3Agent::engineIdOf(_device);
    Agent _agent{"public"};
    V3Agent _v3Agent{"public"};
    Trick _trick;
    Bytes _honest;
};

TEST_F(Tricks, CutMessagesShort)
{
    play("truncated-messages");
    std::set<std::size_t> sizes;
    for (int turn = 0; turn < 20; ++turn) {
        const Bytes message = spoilt();
        EXPECT_LT(message.size(), _honest.size());
        EXPECT_TRUE(std::equal(message.begin(), message.end(), _honest.begin()));
        EXPECT_FALSE(isReadable(message));
        sizes.insert(message.size());
    }
    EXPECT_GT(sizes.size(), 10U);
}

TEST_F(Tricks, FillADatagram)
{
    play("overlong-messages");
    const Bytes message = spoilt();
    EXPECT_EQ(message.size(), 65507U);
    EXPECT_TRUE(std::equal(_honest.begin(), _honest.end(), message.begin()));
}

TEST_F(Tricks, MakeMessagesThatCannotBeRead)
{
    expectUnreadable("lying-lengths", 4);
    expectUnreadable("nine-byte-integers", 3);
    expectUnreadable("oids-of-129-arcs", 2);
    play("unknown-types");
    EXPECT_FALSE(isReadable(spoilt()));
    EXPECT_EQ(Packet::read(spoilt())->pdu, 0xAF);
}

TEST_F(Tricks, NameOidsOfOneArcTooMany)
{
    play("oids-of-129-arcs");
    const Bytes name = Packet::read(spoilt())->bindings.at(0).oid;
    const ByteView contents = BerReader(name).next()->contents;
    EXPECT_EQ(std::ranges::count_if(contents, [](std::uint8_t byte) { return byte < 0x80; }) + 1, 129);
}

TEST_F(Tricks, AnswerForSomebodyElse)
{
    play("wrong-request-id");
    EXPECT_EQ(Testing::decode(spoilt()).requestId, 4711 ^ 1);
    play("wrong-community");
    EXPECT_EQ(Testing::decode(spoilt()).community, "??????");
    EXPECT_EQ(Testing::decode(spoilt()).requestId, 4711);
}

TEST_F(Tricks, SendLargeTextsAndNothingElseThatIsLarge)
{
    play("values-of-60-kb");
    EXPECT_EQ(Testing::decode(spoilt()).varbinds.at(0).text, std::string(60000, 'x'));
    const auto type = Testing::decode(getNext("1.3.6.1.2.1.25.3.2.1.2").at(0).datagram);
    EXPECT_EQ(type.varbinds.at(0).text, ".1.3.6.1.2.1.25.3.1.5");
}

TEST_F(Tricks, FailWithAnErrorStatus)
{
    for (const int status : {5, 99}) {
        play("error-status-" + std::to_string(status));
        EXPECT_EQ(Testing::decode(spoilt()).status, status);
    }
}

TEST_F(Tricks, HaveTablesThatNoWalkGetsThrough)
{
    EXPECT_THAT(walk("endless-table-fast", 4), testing::ElementsAre("1", "2", "3", "4"));
    EXPECT_THAT(walk("endless-table-slow", 3), testing::ElementsAre("1", "2", "3"));
    EXPECT_THAT(walk("repeating-table", 3), testing::ElementsAre("1", "1", "1"));
    EXPECT_THAT(walk("backward-table", 3), testing::ElementsAre("1000", "999", "998"));
    EXPECT_THAT(walk("alternating-table", 4), testing::ElementsAre("1", "2", "1", "2"));
}

TEST_F(Tricks, OfTablesAnswerAllElseHonestly)
{
    for (const NamedTrick& trick : tableTricks()) {
        play(trick.name);
        EXPECT_EQ(get().at(0).datagram, _honest);
        EXPECT_EQ(getNext("1.3.6.1.2.1.1").at(0).datagram, _honest);
    }
}

TEST_F(Tricks, OfTheSlowTableTakeNearlyASecond)
{
    play("endless-table-slow");
    EXPECT_EQ(getNext("1.3.6.1.2.1.25.3.2.1.2").at(0).delay.count(), 900);
}

TEST_F(Tricks, SendFromElsewhere)
{
    play("replies-from-other-address");
    EXPECT_EQ(get().at(0).from, Reply::From::OtherAddress);
    play("replies-from-other-port");
    EXPECT_EQ(get().at(0).from, Reply::From::OtherPort);
    EXPECT_EQ(get().at(0).datagram, _honest);
}

TEST_F(Tricks, SendMoreThanOnce)
{
    play("duplicated-replies");
    const Replies replies = get();
    EXPECT_THAT(replies, SizeIs(3));
    for (const Reply& reply : replies)
        EXPECT_EQ(reply.datagram, _honest);
}

TEST_F(Tricks, SendLate)
{
    play("late-replies");
    EXPECT_EQ(get().at(0).delay.count(), 1500);
    play("replies-after-time-out");
    EXPECT_EQ(get().at(0).delay.count(), 6000);
}

TEST_F(Tricks, SendInAnotherOrder)
{
    play("reordered-replies");
    for (int round = 0; round < 2; ++round) {
        EXPECT_THAT(get("1.3.6.1.2.1.1.1.0"), IsEmpty());
        const Bytes first = _honest;
        const Replies replies = get("1.3.6.1.2.1.1.2.0");
        ASSERT_THAT(replies, SizeIs(2));
        EXPECT_EQ(replies[0].datagram, _honest);
        EXPECT_EQ(replies[1].datagram, first);
    }
}

TEST_F(Tricks, AnswerEveryThird)
{
    play("replies-to-every-third");
    std::string answered;
    for (int turn = 0; turn < 7; ++turn)
        answered += get().empty() ? '-' : 'x';
    EXPECT_EQ(answered, "--x--x-");
}

TEST_F(Tricks, FallSilentAfterTheWalk)
{
    play("silent-after-walk");
    EXPECT_EQ(getNext("1.3.6.1.2.1.25.3.2.1.2").at(0).datagram, _honest);
    EXPECT_THAT(get(), IsEmpty());
}

TEST_F(Tricks, OfVersion3AnswerTheOthersHonestly)
{
    for (const NamedTrick& trick : v3Tricks()) {
        play(trick.name);
        EXPECT_EQ(get().at(0).datagram, _honest);
    }
}

TEST_F(Tricks, ReportWithoutAnEnd)
{
    play("v3-report-loop");
    EXPECT_EQ(counterOf(v3Reply({})), V3Report::unknownEngineIds);
    std::set<std::int64_t> boots;
    for (int turn = 0; turn < 5; ++turn) {
        const V3Message report = v3Reply(_engine);
        EXPECT_EQ(counterOf(report), V3Report::notInTimeWindows);
        boots.insert(report.boots);
    }
    EXPECT_THAT(boots, SizeIs(5));
}

TEST_F(Tricks, AreAnotherEngineEachTime)
{
    play("v3-engine-loop");
    std::set<Bytes> engines;
    for (const Bytes& asked : {Bytes(), _engine, _engine}) {
        const V3Message report = v3Reply(asked);
        EXPECT_EQ(counterOf(report), V3Report::unknownEngineIds);
        engines.insert(report.engine);
    }
    EXPECT_THAT(engines, SizeIs(3));
    EXPECT_FALSE(engines.contains(_engine));
}

TEST_F(Tricks, HaveClocksAtTheirLimits)
{
    for (const auto& [name, limit] :
         {std::pair("v3-clock-at-limit", INT32_MAX), std::pair("v3-clock-below-zero", -1)}) {
        play(name);
        for (const Bytes& asked : {Bytes(), _engine}) {
            EXPECT_EQ(v3Reply(asked).boots, limit);
            EXPECT_EQ(v3Reply(asked).time, limit);
        }
    }
}

TEST_F(Tricks, HaveNoEngineId)
{
    play("v3-empty-engine-id");
    EXPECT_THAT(v3Reply({}).engine, IsEmpty());
    EXPECT_THAT(v3Reply(_engine).engine, IsEmpty());
}

/// A row of the table: "| `name` | ...".
std::vector<std::string> documentedTricks()
{
    std::ifstream document(LAB_DOCUMENT);
    std::vector<std::string> names;
    bool hostile = false;
    for (std::string line; std::getline(document, line);) {
        hostile = line.starts_with("#") ? line == "## Hostile devices" : hostile;
        if (hostile && line.starts_with("| `"))
            names.push_back(line.substr(3, line.find('`', 3) - 3));
    }
    return names;
}

TEST_F(Tricks, AreAllDocumented)
{
    std::vector<std::string> names;
    for (const auto& [name, profile] : _profiles)
        names.push_back(name);
    EXPECT_THAT(documentedTricks(), testing::UnorderedElementsAreArray(names));
}

} // namespace
} // namespace Lab
