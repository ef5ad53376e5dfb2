#include "tests/unit/kep/tasks/QueueFixture.h"

#include <csignal>

namespace {

using namespace Kep::Testing;

using Signals = QueueTest;

TEST_F(Signals, SentToTheProcessAreLeftToOtherThreads)
{
    makeQueue(1);
    std::atomic<bool> blocked{false};
    submit([&blocked] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        blocked = sigismember(&mask, SIGINT) == 1 && sigismember(&mask, SIGTERM) == 1 &&
                  sigismember(&mask, SIGCHLD) == 1 && sigismember(&mask, SIGUSR1) == 1;
        return true;
    });
    waitForAll();
    EXPECT_TRUE(blocked);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGINT), 0) << "the submitter's own mask is as before";
}

} // namespace
