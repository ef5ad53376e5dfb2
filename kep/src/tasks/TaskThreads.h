/// Where a task queue gets its threads from.
#pragma once

#include <functional>

namespace Kep {

/// Any thread.
class ITaskThreads {
public:
    virtual ~ITaskThreads() = default;

    /// Starts a thread of its own that calls `body`, which throws nothing, and ends. False when there is no thread to
    /// be had.
    virtual bool start(std::function<void()> body) noexcept = 0;
};

/// Threads of the system: with a small stack, and without signals sent to the process.
class SystemTaskThreads final : public ITaskThreads {
public:
    bool start(std::function<void()> body) noexcept override;
};

} // namespace Kep
