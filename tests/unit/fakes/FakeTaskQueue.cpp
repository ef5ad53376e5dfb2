#include "fakes/FakeTaskQueue.h"

#include "Kep/Exception.h"
#include "fakes/Journal.h"

#include <stdexcept>

namespace Fakes {

std::uint32_t FakeTaskQueue::submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string& group,
                                    int priority)
{
    const bool runMutexFree = Journal::record("submit " + task->name());
    const Kep::MutexLock lock(mutex_);
    if (failIn_ > 0 && --failIn_ == 0)
        throw Kep::GenericException("the queue takes no task");
    const std::uint32_t id = ++lastId_;
    submissions_.push_back({id, task->name(), task->options().description, group, priority, runMutexFree});
    queued_[id].task = task;
    return id;
}

void FakeTaskQueue::failSubmission(std::size_t n)
{
    const Kep::MutexLock lock(mutex_);
    failIn_ = n;
}

std::vector<FakeTaskQueue::Submission> FakeTaskQueue::submissions() const
{
    const Kep::MutexLock lock(mutex_);
    return submissions_;
}

std::vector<std::string> FakeTaskQueue::descriptions(const std::string& name) const
{
    std::vector<std::string> texts;
    for (const Submission& submission : submissions()) {
        if (submission.name == name)
            texts.push_back(submission.description);
    }
    return texts;
}

std::vector<std::uint32_t> FakeTaskQueue::waiting() const
{
    const Kep::MutexLock lock(mutex_);
    std::vector<std::uint32_t> ids;
    for (const auto& [id, queued] : queued_) {
        if (!queued.ran)
            ids.push_back(id);
    }
    return ids;
}

std::vector<std::uint32_t> FakeTaskQueue::unfinished() const
{
    const Kep::MutexLock lock(mutex_);
    std::vector<std::uint32_t> ids;
    for (const auto& [id, queued] : queued_)
        ids.push_back(id);
    return ids;
}

bool FakeTaskQueue::run(std::uint32_t id)
{
    {
        const Kep::MutexLock lock(mutex_);
        queued_.at(id).ran = true;
    }
    return call(id);
}

bool FakeTaskQueue::call(std::uint32_t id)
{
    Kep::MutexLock lock(mutex_);
    Queued& queued = queued_.at(id); // stays where it is: only `finish` of this task erases it
    lock.unlock();
    Kep::Tasks::RunContext context{id};
    const bool succeeded = queued.task->run(context);
    lock.lock();
    queued.succeeded = succeeded;
    return succeeded;
}

void FakeTaskQueue::finish(std::uint32_t id)
{
    Kep::MutexLock lock(mutex_);
    const auto node = queued_.extract(id);
    lock.unlock();
    if (node.empty())
        throw std::out_of_range("no such task");
    const Queued& queued = node.mapped();
    Kep::Tasks::FinishContext context{id, queued.ran, queued.succeeded};
    queued.task->finish(context);
}

void FakeTaskQueue::complete(std::uint32_t id)
{
    {
        const Kep::MutexLock lock(mutex_);
        queued_.at(id).ran = true;
    }
    callAndFinish(id);
}

bool FakeTaskQueue::completeNext()
{
    Kep::MutexLock lock(mutex_);
    for (auto& [id, queued] : queued_) {
        if (queued.ran)
            continue;
        queued.ran = true; // now, so that no other thread takes it too
        const std::uint32_t oldest = id;
        lock.unlock();
        callAndFinish(oldest);
        return true;
    }
    return false;
}

void FakeTaskQueue::callAndFinish(std::uint32_t id)
{
    try {
        call(id);
    } catch (...) {
        finish(id);
        throw;
    }
    finish(id);
}

void FakeTaskQueue::completeAll()
{
    while (completeNext()) {
    }
}

void FakeTaskQueue::withdrawAll()
{
    for (const std::uint32_t id : unfinished())
        finish(id);
}

} // namespace Fakes
