/// The tasks that a queue has taken on, in the order in which to serve them, and the calls that they belong to.
#pragma once

#include "Kep/Host/Call.h"
#include "Kep/Tasks/Task.h"
#include "tasks/CallbacksService.h"

#include <boost/intrusive/list.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

namespace Kep {

/// Book-keeping alone: no threads, no lock; one thread at a time. No operation takes longer for what is pending.
class Backlog {
    using Hook = boost::intrusive::list_member_hook<>;
    struct Call;

public:
    /// A task from its submission until it has been removed. Whoever has taken it may use the public members.
    struct Entry {
        std::uint32_t id;
        std::shared_ptr<Tasks::Task> task;
        std::shared_ptr<Platform::CallbacksService> owner;
        Host::CallId callId;    ///< 0 when it belongs to none
        bool withdrawn = false; ///< settled when it is taken: not to be run, only finished

        Entry(std::uint32_t taskId, const std::shared_ptr<Tasks::Task>& what,
              const std::shared_ptr<Platform::CallbacksService>& whose, Call* cause);

    private:
        friend class Backlog;
        Call* call_;
        Hook inQueue_;
        Hook inCall_;
    };

    Backlog() = default;
    ~Backlog();
    Backlog(const Backlog&) = delete;
    Backlog& operator=(const Backlog&) = delete;

    /// Adds a task behind the others and returns its id. `call` is the call it belongs to, or 0. Throws
    /// `std::bad_alloc`, and nothing has changed then.
    std::uint32_t add(const std::shared_ptr<Tasks::Task>& task,
                      const std::shared_ptr<Platform::CallbacksService>& owner, Host::CallId call);

    /// Lets ids go on after `lastId`. Ids count up, begin anew after the largest, and pass over those in use.
    void setLastId(std::uint32_t lastId) noexcept { lastId_ = lastId; }

    /// Takes out the task to serve next: the first of a withdrawn call, or else the first of all. Requires
    /// `queued() > 0`.
    Entry& take() noexcept;

    /// Forgets a task that had been taken and lets its id be used again.
    void remove(Entry& entry) noexcept;

    /// Keeps what is known of a call until `closeCall`, with or without tasks. Without memory it does nothing: the
    /// call is then known from its first task to its last.
    void openCall(Host::CallId call) noexcept;
    void closeCall(Host::CallId call) noexcept;

    /// Withdraws a call, as long as it is known.
    void withdraw(Host::CallId call) noexcept;

    Host::CallWork workOf(Host::CallId call) const noexcept;

    /// Whether a call is open or has tasks.
    bool knows(Host::CallId call) const noexcept { return calls_.contains(call); }

    std::size_t queued() const noexcept { return queued_; }
    std::size_t pending() const noexcept { return entries_.size(); }
    std::size_t calls() const noexcept { return calls_.size(); }

private:
    using Queue = boost::intrusive::list<Entry, boost::intrusive::member_hook<Entry, Hook, &Entry::inQueue_>,
                                         boost::intrusive::constant_time_size<false>>;
    using CallQueue = boost::intrusive::list<Entry, boost::intrusive::member_hook<Entry, Hook, &Entry::inCall_>,
                                             boost::intrusive::constant_time_size<true>>;
    struct Call {
        Host::CallId id = 0;
        bool open = false;
        bool withdrawn = false;
        std::size_t running = 0;
        CallQueue queued;
        Hook inUrgent;
    };
    using Urgent = boost::intrusive::list<Call, boost::intrusive::member_hook<Call, Hook, &Call::inUrgent>,
                                          boost::intrusive::constant_time_size<false>>;

    Call* findOrAddCall(Host::CallId id);
    Entry& addEntry(const std::shared_ptr<Tasks::Task>& task, const std::shared_ptr<Platform::CallbacksService>& owner,
                    Call* call);
    void hurry(Call& call) noexcept;
    void dropIfDone(Call& call) noexcept;

    std::uint32_t lastId_ = 0;
    std::size_t queued_ = 0;
    std::unordered_map<std::uint32_t, Entry> entries_;
    std::unordered_map<Host::CallId, Call> calls_;
    Queue queue_;
    Urgent urgent_; // withdrawn calls that have tasks queued
};

} // namespace Kep
