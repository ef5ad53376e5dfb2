// The port on 127.0.0.0/8, in a network namespace of the test's own that also has an address that is not loopback.
#include "lab/Outbox.h"

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <string>

namespace Lab {
namespace {

constexpr int succeeded = 0;
constexpr int lacksRight = 77;
constexpr const char* otherAddress = "192.0.2.1";

sockaddr_in at(const char* address, std::uint16_t port)
{
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = ::inet_addr(address);
    place.sin_port = htons(port);
    return place;
}

/// Brings `lo` up and gives it an address outside 127.0.0.0/8 besides.
bool configure()
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM, 0);
    ifreq up{};
    std::strcpy(up.ifr_name, "lo");
    up.ifr_flags = IFF_UP | IFF_LOOPBACK;
    ifreq address{};
    std::strcpy(address.ifr_name, "lo:1");
    const sockaddr_in other = at(otherAddress, 0);
    std::memcpy(&address.ifr_addr, &other, sizeof other);
    const bool done = ::ioctl(descriptor, SIOCSIFFLAGS, &up) == 0 && ::ioctl(descriptor, SIOCSIFADDR, &address) == 0;
    ::close(descriptor);
    return done;
}

bool enterOwnNetwork()
{
    return (::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0) && configure();
}

/// Runs `body` in a child process and network of its own; its result is the child's failures.
int inOwnNetwork(const std::function<std::string()>& body)
{
    const pid_t child = ::fork();
    if (child == 0) {
        if (!enterOwnNetwork())
            ::_exit(lacksRight);
        const std::string failure = body();
        if (!failure.empty())
            ::dprintf(STDERR_FILENO, "%s\n", failure.c_str());
        ::_exit(failure.empty() ? succeeded : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

/// A client that sends a datagram and takes an answer only from where it sent it.
class Client {
public:
    Client(const char* address, std::uint16_t port) : _descriptor(::socket(AF_INET, SOCK_DGRAM, 0))
    {
        const sockaddr_in to = at(address, port);
        if (::connect(_descriptor, reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0 ||
            ::send(_descriptor, "ping", 4, 0) != 4)
            ::dprintf(STDERR_FILENO, "cannot send to %s\n", address);
    }
    ~Client() { ::close(_descriptor); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// What has come by now; loopback delivers before a send returns.
    [[nodiscard]] std::string received() const
    {
        char text[16];
        const ssize_t size = ::recv(_descriptor, text, sizeof text, MSG_DONTWAIT);
        return size < 0 ? std::string() : std::string(text, static_cast<std::size_t>(size));
    }

private:
    int _descriptor;
};

/// Says everybody's address.
std::size_t echo(ByteView request, const LoopbackSocket::Ends& ends, std::span<std::uint8_t> out)
{
    const std::string text = std::string(request.begin(), request.end()) + " " + formatIpv4(ends.asked);
    std::copy(text.begin(), text.end(), out.begin());
    return text.size();
}

std::string answerFrom(const char* address)
{
    LoopbackSocket socket(0);
    const Client client(address, socket.port());
    const auto counts = socket.exchange(echo);
    return std::to_string(counts.answers) + " answers: " + client.received();
}

std::string compare(const std::string& found, const std::string& expected)
{
    return found == expected ? "" : "found \"" + found + "\", expected \"" + expected + '"';
}

#define EXPECT_IN_OWN_NETWORK(body)                                                                                    \
    const int result = inOwnNetwork(body);                                                                             \
    if (result == lacksRight)                                                                                          \
        GTEST_SKIP() << "no right to make a network namespace";                                                        \
    EXPECT_EQ(result, succeeded)

TEST(LoopbackPort, AnswersOnEveryLoopbackAddressFromTheAddressAsked)
{
    EXPECT_IN_OWN_NETWORK([] {
        return compare(answerFrom("127.0.0.1"), "1 answers: ping 127.0.0.1") +
               compare(answerFrom("127.200.3.4"), "1 answers: ping 127.200.3.4");
    });
}

TEST(LoopbackPort, IsSilentOnOtherAddressesOfTheMachine)
{
    EXPECT_IN_OWN_NETWORK([] { return compare(answerFrom(otherAddress), "0 answers: "); });
}

TEST(LoopbackPort, AnswersEachOfManyClients)
{
    EXPECT_IN_OWN_NETWORK([] {
        LoopbackSocket socket(0);
        std::vector<std::unique_ptr<Client>> clients;
        for (int i = 1; i <= 200; ++i)
            clients.push_back(std::make_unique<Client>(("127.1.2." + std::to_string(i)).c_str(), socket.port()));
        for (LoopbackSocket::Counts counts{1, 0}; counts.requests > 0;)
            counts = socket.exchange(echo);
        std::string failures;
        for (std::size_t i = 0; i < clients.size(); ++i)
            failures += compare(clients[i]->received(), "ping 127.1.2." + std::to_string(i + 1));
        return failures;
    });
}

TEST(LoopbackPort, SendsLaterInTheOrderOfTheirTime)
{
    EXPECT_IN_OWN_NETWORK([] {
        LoopbackSocket socket(0);
        const Client client("127.0.0.1", socket.port());
        LoopbackSocket::Ends ends;
        socket.exchange([&](ByteView, const LoopbackSocket::Ends& seen, std::span<std::uint8_t>) -> std::size_t {
            ends = seen;
            return 0;
        });
        Outbox outbox;
        const auto now = Outbox::Clock::now();
        outbox.put(now + std::chrono::seconds(2), {{'2'}, ends});
        outbox.put(now + std::chrono::seconds(1), {{'1'}, ends});
        outbox.put(now + std::chrono::seconds(1), {{'!'}, ends});
        std::string taken = client.received();
        const bool early = outbox.sendDue(socket, now) == 0 && outbox.nextDue() == now + std::chrono::seconds(1);
        const auto first = outbox.sendDue(socket, now + std::chrono::seconds(1));
        const auto second = outbox.sendDue(socket, now + std::chrono::seconds(9));
        for (int i = 0; i < 3; ++i)
            taken += client.received();
        return compare(taken, "1!2") + (early && first == 2 && second == 1 && !outbox.nextDue() ? "" : "wrong counts");
    });
}

TEST(LoopbackPort, SendsFromElsewhereWhatItsClientMustNotTake)
{
    EXPECT_IN_OWN_NETWORK([] {
        LoopbackSocket socket(0);
        const Client client("127.0.0.1", socket.port());
        std::uint64_t sent = 0;
        socket.exchange([&](ByteView, const LoopbackSocket::Ends& ends, std::span<std::uint8_t>) -> std::size_t {
            Outbox outbox;
            LoopbackSocket::Ends neighbour = ends;
            neighbour.asked ^= 2U;
            outbox.put(Outbox::Clock::now(), {{'a'}, neighbour});
            outbox.put(Outbox::Clock::now(), {{'p'}, ends, true});
            outbox.put(Outbox::Clock::now(), {{'g'}, ends});
            sent = outbox.sendDue(socket, Outbox::Clock::now());
            return 0;
        });
        std::string taken = client.received();
        taken += client.received();
        return compare(taken, "g") + (sent == 3 ? "" : "not sent");
    });
}

TEST(LoopbackPort, TakesEmptyAndLargeDatagrams)
{
    EXPECT_IN_OWN_NETWORK([] {
        LoopbackSocket socket(0);
        const sockaddr_in to = at("127.0.0.5", socket.port());
        const int descriptor = ::socket(AF_INET, SOCK_DGRAM, 0);
        const std::string large(65507, 'x');
        for (const std::string& text : {std::string(), large})
            ::sendto(descriptor, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
        std::string sizes;
        socket.exchange([&](ByteView request, const LoopbackSocket::Ends&, std::span<std::uint8_t>) -> std::size_t {
            sizes += std::to_string(request.size()) + " ";
            return 0;
        });
        ::close(descriptor);
        return compare(sizes, "0 65507 ");
    });
}

} // namespace
} // namespace Lab
