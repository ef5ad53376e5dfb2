#include "host/Interruption.h"

#include "host/Errors.h"
#include "host/ExitCode.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace Host {

namespace {

constexpr int Handled[] = {SIGINT, SIGTERM};
constexpr std::size_t ReadSize = 65536;

// What the handler touches: a flag, and a pipe whose readable end wakes waits.
std::atomic<bool> g_interrupted{false};
std::array<int, 2> g_pipe{-1, -1};
std::array<struct sigaction, std::size(Handled)> g_before{};

static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void onSignal(int)
{
    if (g_interrupted.exchange(true))
        _exit(static_cast<int>(ExitCode::Interrupted));
    const int error = errno;
    const char wake = 0;
    [[maybe_unused]] const auto written = write(g_pipe[1], &wake, 1);
    errno = error;
}

[[noreturn]] void refuse()
{
    throw Failure("signals cannot be handled: " + std::generic_category().message(errno));
}

/// Polls until one of the descriptors is readable or `time` has passed; a signal ends the wait too.
void pollFor(pollfd* descriptors, nfds_t count, std::chrono::milliseconds time)
{
    poll(descriptors, count, static_cast<int>(time.count()));
}

} // namespace

Interruption::Interruption()
{
    g_interrupted = false;
    if (std::signal(SIGPIPE, SIG_IGN) == SIG_ERR)
        refuse();
    if (pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        refuse();
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < g_before.size(); ++i)
        if (sigaction(Handled[i], &action, &g_before[i]) != 0)
            refuse();
}

Interruption::~Interruption()
{
    for (std::size_t i = 0; i < g_before.size(); ++i)
        sigaction(Handled[i], &g_before[i], nullptr);
    for (int& descriptor : g_pipe)
        close(std::exchange(descriptor, -1));
}

bool Interruption::interrupted()
{
    return g_interrupted;
}

void Interruption::waitForWish(std::chrono::milliseconds time)
{
    pollfd wake{g_pipe[0], POLLIN, 0};
    pollFor(&wake, 1, time);
}

Interruption::Input Interruption::readInput(std::string& bytes)
{
    while (!g_interrupted) {
        std::array<pollfd, 2> sources{pollfd{g_pipe[0], POLLIN, 0}, pollfd{STDIN_FILENO, POLLIN, 0}};
        pollFor(sources.data(), sources.size(), std::chrono::milliseconds(-1));
        if (g_interrupted || sources[1].revents == 0)
            continue;
        bytes.resize(ReadSize);
        const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes.empty() ? Input::End : Input::Data;
    }
    return Input::Interrupted;
}

} // namespace Host
