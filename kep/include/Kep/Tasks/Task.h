/// A piece of work for the host's task queue.
#pragma once

#include "Kep/Export.h"
#include "Kep/UniqueFunction.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace Kep::Tasks {

/// What a run callback is told: the id of its task.
struct RunContext {
    std::uint32_t taskId = 0;
};

/// What a finish callback is told.
struct FinishContext {
    std::uint32_t taskId = 0;
    bool ran = false;       ///< false when the task was withdrawn before it ran
    bool succeeded = false; ///< the run callback returned true
};

struct TaskOptions {
    std::string description; ///< shown to people who look at the queue
};

using RunCallback = UniqueFunction<bool(RunContext&)>;
using FinishCallback = UniqueFunction<void(FinishContext&)>;

/// A name and two callbacks, which live and die with it. Built and configured by one thread, then handed to a queue,
/// whose threads call it.
class KEP_API Task {
public:
    Task(std::string name, RunCallback run, FinishCallback finish);
    ~Task();
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    /// Copies `options` into the task. Before it is submitted.
    void setOptions(const TaskOptions& options);

    const std::string& name() const noexcept { return name_; }
    const TaskOptions& options() const noexcept { return options_; }

    /// For the queue: call the callbacks, at most once each, run before finish. What they throw passes.
    bool run(RunContext& context) { return run_(context); }
    void finish(FinishContext& context) { finish_(context); }

    /// For the queue: what keeps the library of the callbacks in the process, or nothing where unloading a library
    /// waits for its tasks. To be let go of after the task.
    std::shared_ptr<const void> takeCode() noexcept { return std::move(code_); }

private:
    std::shared_ptr<const void> code_;
    std::string name_;
    RunCallback run_;
    FinishCallback finish_;
    TaskOptions options_;
};

} // namespace Kep::Tasks
