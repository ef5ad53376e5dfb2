#include "net/ReverseLookup.h"

#include "Kep/Exception.h"
#include "net/ResolverSystem.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <span>

namespace Kep::Net {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds limit{2000};
constexpr milliseconds firstTimeout{650}; // the library doubles it for the second try: 1.95 s with one server
constexpr int tries = 2;
constexpr std::size_t longestName = 255;

void check(int status)
{
    if (status != ARES_SUCCESS) {
        throw GenericException(std::string("the resolver cannot be set up: ") + ares_strerror(status));
    }
}

void initialiseLibrary()
{
    static const int status = ares_library_init(ARES_LIB_INIT_ALL);
    check(status);
}

// A channel belongs to one look-up, so that look-ups share nothing and each follows the configuration of its time.
using Channel = std::unique_ptr<ares_channeldata, decltype(&ares_destroy)>;

Channel openChannel(const std::string& servers)
{
    initialiseLibrary();
    ares_options options{};
    options.timeout = static_cast<int>(firstTimeout.count());
    options.tries = tries;
    ares_channel channel = nullptr;
    check(ares_init_options(&channel, &options, ARES_OPT_TIMEOUTMS | ARES_OPT_TRIES));
    Channel owned(channel, ares_destroy);
    if (!servers.empty()) {
        check(ares_set_servers_ports_csv(channel, servers.c_str()));
    }
    return owned;
}

struct Answer {
    Answer() { text.reserve(longestName + 2); }
    bool arrived = false;
    std::string text; // cut to its capacity, which shows that it is too long
};

// Called by the library, also when the channel is destroyed with the question open.
void takeAnswer(void* argument, int status, int /*timeouts*/, hostent* host) noexcept
{
    auto& answer = *static_cast<Answer*>(argument);
    answer.arrived = true;
    if (status == ARES_SUCCESS) {
        answer.text = officialName(*host).substr(0, longestName + 2);
    }
}

// Has the channel look up the names of `address`, and put them into `answer`.
void ask(ares_channel channel, std::uint32_t address, Answer& answer)
{
    const auto octet = [address](int shift) { return static_cast<unsigned char>(address >> shift); };
    const std::array<unsigned char, 4> octets{octet(24), octet(16), octet(8), octet(0)};
    ares_gethostbyaddr(channel, octets.data(), static_cast<int>(octets.size()), AF_INET, takeAnswer, &answer);
}

// How long the channel may sleep: until its next time-out, but not beyond `deadline`.
milliseconds sleepOf(ares_channel channel, steady_clock::time_point deadline)
{
    const auto left = std::max(std::chrono::ceil<milliseconds>(deadline - steady_clock::now()), milliseconds(0));
    timeval most{};
    most.tv_sec = static_cast<decltype(most.tv_sec)>(left.count() / 1000);
    most.tv_usec = static_cast<decltype(most.tv_usec)>(left.count() % 1000 * 1000);
    timeval next{};
    const timeval* const sleep = ares_timeout(channel, &most, &next);
    return milliseconds(sleep->tv_sec * 1000 + (sleep->tv_usec + 999) / 1000);
}

using Sockets = std::array<ResolverSocket, ARES_GETSOCK_MAXNUM>;

// What the channel waits for, a part of `sockets`.
std::span<ResolverSocket> socketsOf(ares_channel channel, Sockets& sockets)
{
    std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> handles{};
    const auto wanted = static_cast<unsigned>(ares_getsock(channel, handles.data(), static_cast<int>(handles.size())));
    std::size_t count = 0;
    for (std::size_t index = 0; index < handles.size(); ++index) {
        const bool read = ARES_GETSOCK_READABLE(wanted, index) != 0;
        const bool write = ARES_GETSOCK_WRITABLE(wanted, index) != 0;
        if (read || write) {
            sockets[count++] = {handles[index], read, write};
        }
    }
    return std::span(sockets).first(count);
}

// Waits at most that long for something to arrive, and has the channel process it and its time-outs.
void process(ares_channel channel, milliseconds timeout)
{
    Sockets sockets{};
    const auto waiting = socketsOf(channel, sockets);
    waitForSockets(waiting, timeout);
    for (const auto& [handle, read, write] : waiting) {
        if (read || write) {
            ares_process_fd(channel, read ? handle : ARES_SOCKET_BAD, write ? handle : ARES_SOCKET_BAD);
        }
    }
    ares_process_fd(channel, ARES_SOCKET_BAD, ARES_SOCKET_BAD); // time-outs
}

} // namespace

std::string reverseLookup(std::uint32_t address, const std::string& servers)
{
    Answer answer; // outlives the channel, whose end may still call back
    const Channel channel = openChannel(servers);
    const auto deadline = steady_clock::now() + limit;
    ask(channel.get(), address, answer);
    while (!answer.arrived && steady_clock::now() < deadline) {
        process(channel.get(), sleepOf(channel.get(), deadline));
    }
    return hostNameFrom(answer.text);
}

std::string hostNameFrom(std::string_view answer)
{
    if (answer.ends_with('.')) {
        answer.remove_suffix(1);
    }
    const auto isForeign = [](char byte) {
        const auto code = static_cast<unsigned char>(byte);
        return code <= 0x20 || code == 0x7F;
    };
    if (answer.size() > longestName || std::ranges::any_of(answer, isForeign)) {
        return {};
    }
    return std::string(answer);
}

} // namespace Kep::Net
