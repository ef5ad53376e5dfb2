#include "tasks/Backlog.h"

#include <new>

namespace Kep {

Backlog::Entry::Entry(std::uint32_t taskId, const std::shared_ptr<Tasks::Task>& what,
                      const std::shared_ptr<Platform::CallbacksService>& whose, Call* cause)
    : id(taskId), task(what), owner(whose), callId(cause == nullptr ? 0 : cause->id), call_(cause)
{}

Backlog::~Backlog()
{
    urgent_.clear();
    queue_.clear();
    for (auto& [id, call] : calls_) {
        call.queued.clear();
    }
}

std::uint32_t Backlog::add(const std::shared_ptr<Tasks::Task>& task,
                           const std::shared_ptr<Platform::CallbacksService>& owner, Host::CallId callId)
{
    Call* const call = findOrAddCall(callId);
    Entry& entry = addEntry(task, owner, call);
    queue_.push_back(entry);
    ++queued_;
    if (call != nullptr) {
        call->queued.push_back(entry);
        hurry(*call);
    }
    return entry.id;
}

Backlog::Call* Backlog::findOrAddCall(Host::CallId id)
{
    if (id == 0) {
        return nullptr;
    }
    Call& call = calls_[id];
    call.id = id;
    return &call;
}

Backlog::Entry& Backlog::addEntry(const std::shared_ptr<Tasks::Task>& task,
                                  const std::shared_ptr<Platform::CallbacksService>& owner, Call* call)
{
    try {
        for (;;) {
            if (++lastId_ == 0) {
                continue;
            }
            const auto [place, isNew] = entries_.try_emplace(lastId_, lastId_, task, owner, call);
            if (isNew) {
                return place->second;
            }
        }
    } catch (...) {
        if (call != nullptr) {
            dropIfDone(*call);
        }
        throw;
    }
}

Backlog::Entry& Backlog::take() noexcept
{
    Entry& entry = urgent_.empty() ? queue_.front() : urgent_.front().queued.front();
    queue_.erase(queue_.iterator_to(entry));
    --queued_;
    if (Call* const call = entry.call_; call != nullptr) {
        entry.withdrawn = call->withdrawn;
        call->queued.erase(call->queued.iterator_to(entry));
        ++call->running;
        if (call->inUrgent.is_linked() && call->queued.empty()) {
            urgent_.erase(urgent_.iterator_to(*call));
        }
    }
    return entry;
}

void Backlog::remove(Entry& entry) noexcept
{
    if (Call* const call = entry.call_; call != nullptr) {
        --call->running;
        dropIfDone(*call);
    }
    entries_.erase(entry.id);
}

void Backlog::openCall(Host::CallId id) noexcept
{
    try {
        findOrAddCall(id)->open = true;
    } catch (const std::bad_alloc&) {
        return;
    }
}

void Backlog::closeCall(Host::CallId id) noexcept
{
    if (const auto found = calls_.find(id); found != calls_.end()) {
        found->second.open = false;
        dropIfDone(found->second);
    }
}

void Backlog::withdraw(Host::CallId id) noexcept
{
    if (const auto found = calls_.find(id); found != calls_.end()) {
        found->second.withdrawn = true;
        hurry(found->second);
    }
}

Host::CallWork Backlog::workOf(Host::CallId id) const noexcept
{
    const auto found = calls_.find(id);
    if (found == calls_.end()) {
        return {};
    }
    return {.queued = found->second.queued.size(), .running = found->second.running};
}

// Lets the queued tasks of a withdrawn call be served before all others.
void Backlog::hurry(Call& call) noexcept
{
    if (call.withdrawn && !call.queued.empty() && !call.inUrgent.is_linked()) {
        urgent_.push_back(call);
    }
}

void Backlog::dropIfDone(Call& call) noexcept
{
    if (!call.open && call.running == 0 && call.queued.empty()) {
        calls_.erase(call.id);
    }
}

} // namespace Kep
