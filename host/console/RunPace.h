/// Time for a run that is followed on a thread of its own and may be told to stop from another.
#pragma once

#include "Kep/Host/Mutex.h"
#include "host/RunFollower.h"

#include <condition_variable>

namespace Host {

/// Any thread.
class RunPace : public IPace {
public:
    /// From now on the run counts as interrupted.
    void interrupt();

    std::chrono::steady_clock::time_point now() override;
    bool interrupted() override;
    bool sleep(std::chrono::milliseconds time) override;
    void rest(std::chrono::milliseconds time) override;

private:
    Kep::Mutex mutex_;
    std::condition_variable wake_;
    bool interrupted_ KEP_GUARDED_BY(mutex_) = false;
};

} // namespace Host
