#include "net/ReverseLookup.h"

#include "tests/unit/kep/net/UdpResponder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string_view>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace Kep::Testing;
using std::chrono::steady_clock;

constexpr std::uint32_t address = 0xC0000207; // 192.0.2.7, which no host file has

Bytes encodedName(std::string_view name)
{
    Bytes bytes;
    while (!name.empty()) {
        const auto label = name.substr(0, name.find('.'));
        bytes.push_back(static_cast<std::uint8_t>(label.size()));
        bytes.insert(bytes.end(), label.begin(), label.end());
        name.remove_prefix(std::min(label.size() + 1, name.size()));
    }
    bytes.push_back(0);
    return bytes;
}

// The request with flags and an answer section of `answers` records.
Bytes replyTo(const Bytes& request, std::uint8_t code, std::uint8_t answers, const Bytes& section)
{
    Bytes reply(request.begin(), request.begin() + 12);
    reply[2] = 0x84;
    reply[3] = code;
    reply[7] = answers;
    reply[11] = 0;
    const Bytes question = encodedName("7.2.0.192.in-addr.arpa");
    StatusReply::append(reply, question);
    StatusReply::append(reply, {0, 12, 0, 1});
    StatusReply::append(reply, section);
    return reply;
}

Bytes pointerRecord(const Bytes& target)
{
    Bytes record{0xC0, 0x0C, 0, 12, 0, 1, 0, 0, 0, 60};
    StatusReply::put16(record, static_cast<int>(target.size()));
    StatusReply::append(record, target);
    return record;
}

class ReverseDns : public testing::Test {
protected:
    static std::string ask(const std::string& servers) { return Kep::Net::reverseLookup(address, servers); }

    static std::string at(std::uint16_t port) { return "127.0.0.1:" + std::to_string(port); }

    static std::string ask(const UdpResponder& server) { return ask(at(server.port())); }

    static UdpResponder::Script answering(const Bytes& target)
    {
        return [target](const Bytes& request, int) { return Replies{replyTo(request, 0, 1, pointerRecord(target))}; };
    }
};

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

TEST_F(ReverseDns, DescriptorsOfAThousandAndMoreServeAsWell)
{
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    ASSERT_GT(limit.rlim_max, 1200U);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<int> taken;
    while (taken.empty() || taken.back() < 1100) {
        taken.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        ASSERT_GE(taken.back(), 0);
    }
    {
        UdpResponder server(answering(encodedName("printer.example.com")));
        EXPECT_EQ(ask(server), "printer.example.com");
    }
    for (const int descriptor : taken) {
        ::close(descriptor);
    }
}

TEST_F(ReverseDns, ServersThatAreNoneThrow)
{
    EXPECT_ANY_THROW(ask("no address"));
}

TEST_F(ReverseDns, TheHostsFileIsReadToo)
{
    std::ifstream hosts("/etc/hosts");
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
