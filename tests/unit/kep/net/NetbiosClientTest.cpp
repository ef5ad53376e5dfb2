#include "net/NetbiosClient.h"

#include "tests/unit/kep/net/UdpResponder.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace Kep::Testing;
using std::chrono::steady_clock;

constexpr std::uint32_t loopback = 0x7F000001;

std::uint16_t idOf(const Bytes& request)
{
    return static_cast<std::uint16_t>(request.at(0) << 8 | request.at(1));
}

Bytes nodeReplyTo(const Bytes& request, const std::string& name)
{
    return StatusReply(idOf(request)).add("OFFICE", 0x00, true).add(name, 0x00).bytes();
}

class NetbiosQuery : public testing::Test {
protected:
    static std::string ask(const UdpResponder& responder) { return askAt(responder.port()); }

    static std::string askAt(std::uint16_t port) { return Kep::Net::askNodeStatus(loopback, port); }
};

TEST_F(NetbiosQuery, TheNodesNameIsFetched)
{
    UdpResponder node([](const Bytes& request, int) { return Replies{nodeReplyTo(request, "PRINTER")}; });
    EXPECT_EQ(ask(node), "PRINTER");
    ASSERT_EQ(node.requests().size(), 1U);
    EXPECT_EQ(node.requests()[0].size(), 50U);
}

TEST_F(NetbiosQuery, ALostRequestIsSentOnceMore)
{
    UdpResponder node([](const Bytes& request, int number) {
        return number == 0 ? Replies{} : Replies{nodeReplyTo(request, "LATE")};
    });
    EXPECT_EQ(ask(node), "LATE");
    EXPECT_EQ(node.requests().size(), 2U);
}

TEST_F(NetbiosQuery, ASilentNodeIsAskedTwiceAndGivenUp)
{
    UdpResponder node([](const Bytes&, int) { return Replies{}; });
    const auto begin = steady_clock::now();
    EXPECT_EQ(ask(node), "");
    EXPECT_EQ(node.requests().size(), 2U);
    EXPECT_GE(steady_clock::now() - begin, std::chrono::milliseconds(1000));
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(NetbiosQuery, AClosedPortEndsAtOnce)
{
    const auto begin = steady_clock::now();
    EXPECT_EQ(askAt(closedPort()), "");
    EXPECT_LT(steady_clock::now() - begin, std::chrono::milliseconds(500));
}

TEST_F(NetbiosQuery, MalformedAndForeignRepliesAreIgnored)
{
    UdpResponder node([](const Bytes& request, int) {
        Bytes truncated = nodeReplyTo(request, "TRUNCATED");
        truncated.resize(80);
        const Bytes foreign = StatusReply(static_cast<std::uint16_t>(idOf(request) + 1)).add("FOREIGN", 0x00).bytes();
        return Replies{Bytes{}, truncated, foreign, request, Bytes(1500, 0xFF), nodeReplyTo(request, "RIGHT")};
    });
    EXPECT_EQ(ask(node), "RIGHT");
}

TEST_F(NetbiosQuery, RepliesOfAnotherPeerAreNotSeen)
{
    UdpResponder other([](const Bytes& request, int) { return Replies{nodeReplyTo(request, "OTHER")}; });
    UdpResponder silent([](const Bytes&, int) { return Replies{}; });
    EXPECT_EQ(ask(silent), "");
    EXPECT_TRUE(other.requests().empty());
}

TEST_F(NetbiosQuery, AnErrorReplyEndsTheQuery)
{
    UdpResponder node([](const Bytes& request, int) {
        StatusReply reply(idOf(request));
        reply.flags = 0x8402;
        return Replies{reply.bytes()};
    });
    EXPECT_EQ(ask(node), "");
    EXPECT_EQ(node.requests().size(), 1U);
}

TEST_F(NetbiosQuery, TransactionIdsAreNotPredictable)
{
    UdpResponder node([](const Bytes& request, int) { return Replies{nodeReplyTo(request, "PRINTER")}; });
    for (int round = 0; round < 4; ++round) {
        ask(node);
    }
    const auto requests = node.requests();
    const int step = idOf(requests.at(1)) - idOf(requests.at(0));
    EXPECT_FALSE(idOf(requests.at(2)) - idOf(requests.at(1)) == step &&
                 idOf(requests.at(3)) - idOf(requests.at(2)) == step);
}

} // namespace
