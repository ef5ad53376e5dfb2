#include "lab/Lifetime.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <limits>
#include <system_error>

namespace Lab {
namespace {

constexpr int noDescriptor = -1;

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// A descriptor that becomes readable when a signal asks for the end.
int openSignals()
{
    sigset_t signals{};
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGINT);
    ::sigaddset(&signals, SIGTERM);
    if (::sigprocmask(SIG_BLOCK, &signals, nullptr) != 0)
        fail("cannot hold signals back");
    const int descriptor = ::signalfd(noDescriptor, &signals, SFD_CLOEXEC);
    if (descriptor < 0)
        fail("cannot watch signals");
    return descriptor;
}

/// Reads what there is. True at the end of the input.
bool hasEnded(int descriptor)
{
    std::array<char, 4096> discarded{};
    const ssize_t count = ::read(descriptor, discarded.data(), discarded.size());
    return count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN);
}

int milliseconds(std::optional<std::chrono::milliseconds> patience)
{
    constexpr std::chrono::milliseconds::rep longest = std::numeric_limits<int>::max();
    return patience ? static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(patience->count(), 0, longest)) : -1;
}

} // namespace

class Lifetime::System {
public:
    explicit System(bool untilStandardInputCloses)
        : _signals(openSignals()), _input(untilStandardInputCloses ? STDIN_FILENO : noDescriptor)
    {}

    ~System() { ::close(_signals); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    Event wait(int socket, int timeout) const
    {
        for (;;) {
            std::array<pollfd, 3> watched{{{socket, POLLIN, 0}, {_signals, POLLIN, 0}, {_input, POLLIN, 0}}};
            const int count = ::poll(watched.data(), watched.size(), timeout);
            if (count < 0 && errno != EINTR)
                fail("cannot wait");
            if (count == 0)
                return Event::Silence;
            if (count > 0 && (watched[1].revents != 0 || (watched[2].revents != 0 && hasEnded(_input))))
                return Event::End;
            if (count > 0 && watched[0].revents != 0)
                return Event::Requests;
        }
    }

private:
    int _signals;
    int _input;
};

Lifetime::Lifetime(bool untilStandardInputCloses) : _system(std::make_unique<System>(untilStandardInputCloses)) {}

Lifetime::~Lifetime() = default;

Lifetime::Event Lifetime::wait(const LoopbackSocket& socket, std::optional<std::chrono::milliseconds> patience)
{
    return _system->wait(static_cast<int>(socket.handle()), milliseconds(patience));
}

} // namespace Lab
