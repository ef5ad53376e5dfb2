/// The user's wish to stop (Ctrl-C, or a signal to terminate) and the waits that it cuts short.
#pragma once

#include "host/RunFollower.h"

#include <string>

namespace Host {

/// While it lives, the first such wish is noted; a second one leaves the process at once with exit status 130. One at
/// a time in a process, used by one thread. From then on, writing to a pipe that nobody reads fails and does not end
/// the process.
class Interruption : public IPace {
public:
    /// Throws `Failure` when the system refuses.
    Interruption();
    ~Interruption() override;
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    std::chrono::steady_clock::time_point now() override;
    bool interrupted() override;
    bool sleep(std::chrono::milliseconds time) override;
    void rest(std::chrono::milliseconds time) override;

    enum class Input { Data, End, Interrupted };

    /// Waits until standard input has bytes and puts them in `bytes`; `End` also when it cannot be read.
    Input readInput(std::string& bytes);

private:
    /// Until there is such a wish, at most that long.
    void waitForWish(std::chrono::milliseconds time);
};

} // namespace Host
