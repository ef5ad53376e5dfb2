// Requests that net-snmp has written, answered by the agent, and the answers read by net-snmp.
#include "lab/Agent.h"
#include "lab/Snmprec.h"
#include "tests/unit/lab/NetSnmpManager.h"

#include <gmock/gmock.h>

namespace Lab {
namespace {

using Testing::Answered;
using testing::ElementsAre;

class Agents : public testing::Test {
protected:
    Bytes exchange(const Testing::Request& request)
    {
        _out.resize(65507);
        _out.resize(_agent.answer(Testing::encode(request), _device, _out));
        return _out;
    }

    Testing::Answer ask(long version, int type, std::vector<std::string> oids)
    {
        return Testing::decode(exchange({version, type, std::move(oids), "public", 4711}));
    }

    Testing::Answer get(std::vector<std::string> oids, long version = SNMP_VERSION_2c)
    {
        return ask(version, SNMP_MSG_GET, std::move(oids));
    }

    Testing::Answer getNext(std::vector<std::string> oids, long version = SNMP_VERSION_2c)
    {
        return ask(version, SNMP_MSG_GETNEXT, std::move(oids));
    }

    bool isSilentTo(const Testing::Request& request) { return exchange(request).empty(); }

    Device _device{readSnmprec("device", "device",
                               "1.3.6.1.2.1.1.1.0|4|a device\n"
                               "1.3.6.1.2.1.1.2.0|6|1.3.6.1.4.1.99901.1\n"
                               "1.3.6.1.2.1.1.3.0|67|4294967295\n"
                               "1.3.6.1.2.1.2.2.1.2.9|2|-9\n"
                               "1.3.6.1.2.1.2.2.1.2.10|66|10\n"
                               "1.3.6.1.2.1.4.20.1.1|64|192.0.2.1\n"
                               "1.3.6.1.2.1.31.1.1.1.6.1|70|18446744073709551615\n"
                               "1.3.6.1.2.1.31.1.1.1.6.2|70|0\n"
                               "1.3.6.1.2.1.43.1|65|7\n"),
                   parseIpv4("127.0.0.1").value(), Individuality::ByAddress};
    Agent _agent{"public"};
    Bytes _out;
};

TEST_F(Agents, AnswerWithTheRequestsVersionCommunityAndId)
{
    for (const long version : {SNMP_VERSION_1, SNMP_VERSION_2c})
        for (const long id : {0L, 127L, 128L, 2147483647L, -1L, -2147483647L - 1}) {
            const auto answer = Testing::decode(exchange({version, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, "public", id}));
            EXPECT_EQ(answer.version, version);
            EXPECT_EQ(answer.community, "public");
            EXPECT_EQ(answer.command, SNMP_MSG_RESPONSE);
            EXPECT_EQ(answer.requestId, id);
            EXPECT_EQ(answer.status, SNMP_ERR_NOERROR);
            EXPECT_EQ(answer.index, 0);
        }
}

TEST_F(Agents, AnswerAGetWithTheValue)
{
    for (const long version : {SNMP_VERSION_1, SNMP_VERSION_2c})
        EXPECT_THAT(get({"1.3.6.1.2.1.1.1.0"}, version).varbinds,
                    ElementsAre(Answered{".1.3.6.1.2.1.1.1.0", ASN_OCTET_STR, "a device"}));
}

TEST_F(Agents, AnswerManyVarbindsInTheirOrder)
{
    EXPECT_THAT(get({"1.3.6.1.2.1.43.1", "1.3.6.1.2.1.1.3.0", "1.3.6.1.2.1.4.20.1.1", "1.3.6.1.2.1.2.2.1.2.9",
                     "1.3.6.1.2.1.1.2.0", "1.3.6.1.2.1.31.1.1.1.6.1"})
                    .varbinds,
                ElementsAre(Answered{".1.3.6.1.2.1.43.1", ASN_COUNTER, "7"},
                            Answered{".1.3.6.1.2.1.1.3.0", ASN_TIMETICKS, "4294967295"},
                            Answered{".1.3.6.1.2.1.4.20.1.1", ASN_IPADDRESS, "192.0.2.1"},
                            Answered{".1.3.6.1.2.1.2.2.1.2.9", ASN_INTEGER, "-9"},
                            Answered{".1.3.6.1.2.1.1.2.0", ASN_OBJECT_ID, ".1.3.6.1.4.1.99901.1"},
                            Answered{".1.3.6.1.2.1.31.1.1.1.6.1", ASN_COUNTER64, "18446744073709551615"}));
}

TEST_F(Agents, AnswerARequestWithoutVarbinds)
{
    EXPECT_THAT(get({}).varbinds, testing::IsEmpty());
}

TEST_F(Agents, AnswerAGetNextWithTheObjectAfter)
{
    EXPECT_THAT(getNext({"1.3.6.1.2.1.1", "1.3.6.1.2.1.1.3.0", "1.3.6.1.2.1.2.2.1.2.9"}).varbinds,
                ElementsAre(Answered{".1.3.6.1.2.1.1.1.0", ASN_OCTET_STR, "a device"},
                            Answered{".1.3.6.1.2.1.2.2.1.2.9", ASN_INTEGER, "-9"},
                            Answered{".1.3.6.1.2.1.2.2.1.2.10", ASN_GAUGE, "10"}));
}

TEST_F(Agents, SayInVersion2cOfEachVarbindThatItDoesNotExist)
{
    const auto answer = get({"1.3.6.1.2.1.1.9.0", "1.3.6.1.2.1.1.1.0", "1.3.6.1.2.1.1"});
    EXPECT_EQ(answer.status, SNMP_ERR_NOERROR);
    EXPECT_THAT(answer.varbinds, ElementsAre(Answered{".1.3.6.1.2.1.1.9.0", SNMP_NOSUCHINSTANCE, ""},
                                             Answered{".1.3.6.1.2.1.1.1.0", ASN_OCTET_STR, "a device"},
                                             Answered{".1.3.6.1.2.1.1", SNMP_NOSUCHINSTANCE, ""}));
}

TEST_F(Agents, SayInVersion2cThatTheEndIsReached)
{
    EXPECT_THAT(
        getNext({"1.3.6.1.2.1.43.1", "2.999"}).varbinds,
        ElementsAre(Answered{".1.3.6.1.2.1.43.1", SNMP_ENDOFMIBVIEW, ""}, Answered{".2.999", SNMP_ENDOFMIBVIEW, ""}));
}

TEST_F(Agents, FailAWholeRequestOfVersion1AtItsFirstMissingObject)
{
    const auto answer = get({"1.3.6.1.2.1.1.1.0", "1.3.6.1.2.1.1.9.0", "1.3.6.1.2.1.1.8.0"}, SNMP_VERSION_1);
    EXPECT_EQ(answer.status, SNMP_ERR_NOSUCHNAME);
    EXPECT_EQ(answer.index, 2);
    EXPECT_THAT(answer.varbinds,
                ElementsAre(Answered{".1.3.6.1.2.1.1.1.0", ASN_NULL, ""}, Answered{".1.3.6.1.2.1.1.9.0", ASN_NULL, ""},
                            Answered{".1.3.6.1.2.1.1.8.0", ASN_NULL, ""}));
}

TEST_F(Agents, FailAGetNextOfVersion1AtTheEnd)
{
    const auto answer = getNext({"1.3.6.1.2.1.43.1"}, SNMP_VERSION_1);
    EXPECT_EQ(answer.status, SNMP_ERR_NOSUCHNAME);
    EXPECT_EQ(answer.index, 1);
}

TEST_F(Agents, KeepLongCountersFromVersion1)
{
    EXPECT_EQ(get({"1.3.6.1.2.1.31.1.1.1.6.1"}, SNMP_VERSION_1).status, SNMP_ERR_NOSUCHNAME);
    EXPECT_THAT(getNext({"1.3.6.1.2.1.4.20.1.1"}, SNMP_VERSION_1).varbinds,
                ElementsAre(Answered{".1.3.6.1.2.1.43.1", ASN_COUNTER, "7"}));
    EXPECT_THAT(getNext({"1.3.6.1.2.1.4.20.1.1"}).varbinds,
                ElementsAre(Answered{".1.3.6.1.2.1.31.1.1.1.6.1", ASN_COUNTER64, "18446744073709551615"}));
}

TEST_F(Agents, AreSilentToOtherCommunities)
{
    for (const char* community : {"", "publi", "publicx", "private", "Public"})
        EXPECT_TRUE(isSilentTo({SNMP_VERSION_2c, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, community, 1})) << community;
    EXPECT_FALSE(isSilentTo({SNMP_VERSION_2c, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, "public", 1}));
}

TEST_F(Agents, AreSilentToOtherRequests)
{
    const Bytes get = Testing::encode({SNMP_VERSION_2c, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, "public", 1});
    const auto type = std::find(get.begin(), get.end(), SNMP_MSG_GET) - get.begin();
    for (const int other : {SNMP_MSG_SET, SNMP_MSG_RESPONSE, SNMP_MSG_TRAP, SNMP_MSG_GETBULK, SNMP_MSG_INFORM,
                            SNMP_MSG_TRAP2, SNMP_MSG_REPORT}) {
        Bytes request = get;
        request[static_cast<std::size_t>(type)] = static_cast<std::uint8_t>(other);
        Bytes out(65507);
        EXPECT_EQ(_agent.answer(request, _device, out), 0U) << other;
    }
}

TEST_F(Agents, AreSilentWhenTheAnswerDoesNotFit)
{
    const Bytes request = Testing::encode({SNMP_VERSION_2c, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, "public", 1});
    const std::size_t needed = exchange({SNMP_VERSION_2c, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, "public", 1}).size();
    for (std::size_t room = 0; room <= needed; ++room) {
        Bytes out(room);
        EXPECT_EQ(_agent.answer(request, _device, out), room < needed ? 0 : needed);
    }
}

TEST_F(Agents, KeepNothingOfTheRequestBefore)
{
    get({"1.3.6.1.2.1.1.1.0", "1.3.6.1.2.1.1.2.0", "1.3.6.1.2.1.1.3.0"});
    EXPECT_TRUE(isSilentTo({SNMP_VERSION_2c, SNMP_MSG_GET, {"1.3.6.1.2.1.1.1.0"}, "wrong", 1}));
    EXPECT_THAT(get({"1.3.6.1.2.1.43.1"}).varbinds, ElementsAre(Answered{".1.3.6.1.2.1.43.1", ASN_COUNTER, "7"}));
}

TEST_F(Agents, AnswerLongRequestsWithLongLengths)
{
    const std::vector<std::string> oids(300, "1.3.6.1.2.1.1.1.0");
    EXPECT_EQ(get(oids).varbinds, std::vector(300, Answered{".1.3.6.1.2.1.1.1.0", ASN_OCTET_STR, "a device"}));
}

TEST_F(Agents, ReportErrorsBeyondThe127thVarbind)
{
    std::vector<std::string> oids(299, "1.3.6.1.2.1.1.1.0");
    oids.emplace_back("1.3.6.1.2.1.1.9.0");
    EXPECT_EQ(get(oids, SNMP_VERSION_1).index, 300);
}

} // namespace
} // namespace Lab
