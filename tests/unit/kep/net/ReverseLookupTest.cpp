#include "tests/unit/kep/net/ReverseDns.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>

namespace {

using namespace Kep::Testing;
using std::chrono::steady_clock;

TEST_F(ReverseDns, TheNameOfTheAddressIsAskedFor)
{
    UdpResponder server(answering(encodedName("printer.example.com")));
    EXPECT_EQ(ask(server), "printer.example.com");
    ASSERT_EQ(server.requests().size(), 1U);
    const Bytes request = server.requests()[0];
    Bytes question = encodedName("7.2.0.192.in-addr.arpa");
    StatusReply::append(question, {0, 12, 0, 1});
    EXPECT_EQ(Bytes(request.begin() + 12, request.begin() + 12 + static_cast<std::ptrdiff_t>(question.size())),
              question);
}

TEST_F(ReverseDns, AnUnknownAddressHasNoName)
{
    UdpResponder server([](const Bytes& request, int) { return Replies{replyTo(request, 3, 0, {})}; });
    EXPECT_EQ(ask(server), "");
}

TEST_F(ReverseDns, AFailingServerHasNoName)
{
    UdpResponder server([](const Bytes& request, int) { return Replies{replyTo(request, 2, 0, {})}; });
    EXPECT_EQ(ask(server), "");
}

TEST_F(ReverseDns, ASilentServerIsGivenUp)
{
    UdpResponder server([](const Bytes&, int) { return Replies{}; });
    const auto begin = steady_clock::now();
    EXPECT_EQ(ask(server), "");
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_GE(server.requests().size(), 2U);
}

TEST_F(ReverseDns, SeveralSilentServersTakeNoLonger)
{
    UdpResponder first([](const Bytes&, int) { return Replies{}; });
    UdpResponder second([](const Bytes&, int) { return Replies{}; });
    UdpResponder third([](const Bytes&, int) { return Replies{}; });
    const auto begin = steady_clock::now();
    EXPECT_EQ(ask(at(first.port()) + "," + at(second.port()) + "," + at(third.port())), "");
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(4));
}

TEST_F(ReverseDns, TheNextServerIsAskedWhenOneIsSilent)
{
    UdpResponder silent([](const Bytes&, int) { return Replies{}; });
    UdpResponder server(answering(encodedName("printer.example.com")));
    EXPECT_EQ(ask(at(silent.port()) + "," + at(server.port())), "printer.example.com");
}

TEST_F(ReverseDns, AClosedPortHasNoName)
{
    EXPECT_EQ(ask(at(closedPort())), "");
}

TEST_F(ReverseDns, MalformedRepliesAreNoName)
{
    const Bytes good = pointerRecord(encodedName("printer.example.com"));
    for (std::size_t length = 0; length < good.size(); ++length) {
        UdpResponder server([&](const Bytes& request, int) {
            return Replies{
                replyTo(request, 0, 1, Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)))};
        });
        EXPECT_EQ(ask(server), "") << length;
    }
}

TEST_F(ReverseDns, ALoopOfPointersIsNoName)
{
    UdpResponder server(answering({0xC0, 0x34}));
    EXPECT_EQ(ask(server), "");
}

TEST_F(ReverseDns, ControlCharactersInANameAreNoName)
{
    UdpResponder server(answering({7, 'b', 'a', 'd', 27, '[', '3', 'm', 0}));
    EXPECT_EQ(ask(server), "");
}

TEST_F(ReverseDns, ServersThatAreNoneThrow)
{
    EXPECT_ANY_THROW(ask("no address"));
}

TEST_F(ReverseDns, TheHostsFileIsReadToo)
{
    const char* const root = std::getenv("SystemRoot"); // of Windows
    std::ifstream hosts(root == nullptr ? "/etc/hosts" : root + std::string("/system32/drivers/etc/hosts"));
    std::string line;
    std::string expected;
    while (expected.empty() && std::getline(hosts, line)) {
        std::istringstream words(line);
        std::string number;
        if (words >> number && number == "127.0.0.1") {
            words >> expected;
        }
    }
    EXPECT_EQ(Kep::Net::reverseLookup(0x7F000001, at(closedPort())), expected);
}

TEST(HostNameAnswers, TheDotAtTheEndIsTrimmed)
{
    EXPECT_EQ(Kep::Net::hostNameFrom("printer.example.com."), "printer.example.com");
    EXPECT_EQ(Kep::Net::hostNameFrom("printer"), "printer");
    EXPECT_EQ(Kep::Net::hostNameFrom("."), "");
    EXPECT_EQ(Kep::Net::hostNameFrom(""), "");
}

TEST(HostNameAnswers, TooLongOnesAreNone)
{
    EXPECT_EQ(Kep::Net::hostNameFrom(std::string(255, 'a')).size(), 255U);
    EXPECT_EQ(Kep::Net::hostNameFrom(std::string(255, 'a') + ".").size(), 255U);
    EXPECT_EQ(Kep::Net::hostNameFrom(std::string(256, 'a')), "");
}

TEST(HostNameAnswers, BlanksAndControlCharactersAreNone)
{
    for (const char* bad : {"a b", "a\tb", "a\nb", "a\x1B[0m", "a\x7F", "\x01"}) {
        EXPECT_EQ(Kep::Net::hostNameFrom(bad), "");
    }
}

} // namespace
