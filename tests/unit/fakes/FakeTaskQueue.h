/// A task queue without threads: the test runs the tasks, one by one, in the order it likes.
///
/// A submission is entered in the `Journal` as "submit NAME". Tasks run on the thread of the test.
#pragma once

#include "Kep/Mutex.h"
#include "Kep/Tasks/IManager.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Fakes {

/// Any thread. No lock of the queue is held while a callback runs.
class FakeTaskQueue final : public Kep::Tasks::IManager {
public:
    struct Submission {
        std::uint32_t id;
        std::string name;
        std::string description;
        std::string group;
        int priority;
        bool runMutexFree; ///< of the run that the journal watches
    };

    std::uint32_t submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string& group,
                         int priority) override;

    /// The n-th submission from now (1 is the next) throws `Kep::GenericException`; nothing is queued then.
    void failSubmission(std::size_t n);

    /// All that were accepted, in order, whatever became of them.
    std::vector<Submission> submissions() const;

    /// The descriptions of the accepted tasks of that name, in order.
    std::vector<std::string> descriptions(const std::string& name) const;

    /// Tasks that have not run, and tasks whose finish callback has not been called; oldest first.
    std::vector<std::uint32_t> waiting() const;
    std::vector<std::uint32_t> unfinished() const;

    /// Calls the run callback alone, and returns its result; what it throws passes.
    bool run(std::uint32_t id);

    /// Calls the finish callback, whether the task has run or not, and lets go of the task.
    void finish(std::uint32_t id);

    /// `run`, then `finish`, also when the former threw; what it threw then passes.
    void complete(std::uint32_t id);

    /// Completes the oldest task that waits; false when none does.
    bool completeNext();

    /// Completes tasks until none waits, those that are submitted meanwhile included.
    void completeAll();

    /// Finishes all tasks without running those that wait.
    void withdrawAll();

private:
    struct Queued {
        std::shared_ptr<Kep::Tasks::Task> task;
        bool ran = false;
        bool succeeded = false;
    };

    bool call(std::uint32_t id);
    void callAndFinish(std::uint32_t id);

    mutable Kep::Mutex mutex_;
    std::uint32_t lastId_ KEP_GUARDED_BY(mutex_) = 100;
    std::size_t failIn_ KEP_GUARDED_BY(mutex_) = 0;
    std::vector<Submission> submissions_ KEP_GUARDED_BY(mutex_);
    std::map<std::uint32_t, Queued> queued_ KEP_GUARDED_BY(mutex_);
};

} // namespace Fakes
