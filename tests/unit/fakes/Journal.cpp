#include "fakes/Journal.h"

#include "engine/PdExecutor.h"

#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace Fakes {
namespace {

using PrinterDiscoveryPlugin::PdExecutor;

Journal* currentJournal = nullptr;

// The mutex of a run is its own affair, and so is what is inside of it. Access is not checked in the arguments of an
// explicit instantiation, which is how their addresses come out.
template <class Key, typename Key::Member member> struct Opened {
    friend typename Key::Member open(Key) { return member; }
};

struct RunKey {
    using Member = Kep::Mutex PdExecutor::*;
    friend Member open(RunKey);
};
struct MutexKey {
    using Member = std::mutex Kep::Mutex::*;
    friend Member open(MutexKey);
};
template struct Opened<RunKey, &PdExecutor::mutex_>;
template struct Opened<MutexKey, &Kep::Mutex::mutex_>;

} // namespace

bool isMutexFree(PdExecutor& run)
{
    std::mutex& mutex = (run.*open(RunKey())).*open(MutexKey());
    bool free = false;
    std::thread([&] {
        const std::unique_lock lock(mutex, std::try_to_lock);
        free = lock.owns_lock();
    }).join();
    return free;
}

Journal::Journal()
{
    if (currentJournal)
        throw std::logic_error("there is a journal already");
    currentJournal = this;
}

Journal::~Journal()
{
    currentJournal = nullptr;
}

bool Journal::record(const std::string& text)
{
    if (!currentJournal)
        return true;
    Kep::MutexLock lock(currentJournal->mutex_);
    const bool mutexFree = !currentJournal->watched_ || isMutexFree(*currentJournal->watched_);
    currentJournal->entries_.push_back({text, mutexFree});
    const auto found = currentJournal->actions_.find(text);
    const std::function<void()> action = found == currentJournal->actions_.end() ? nullptr : found->second;
    lock.unlock();
    if (action)
        action();
    return mutexFree;
}

void Journal::watch(PdExecutor& run)
{
    const Kep::MutexLock lock(mutex_);
    watched_ = &run;
}

void Journal::watchNothing()
{
    const Kep::MutexLock lock(mutex_);
    watched_ = nullptr;
}

void Journal::during(const std::string& text, std::function<void()> action)
{
    const Kep::MutexLock lock(mutex_);
    actions_[text] = std::move(action);
}

std::vector<Journal::Entry> Journal::entries() const
{
    const Kep::MutexLock lock(mutex_);
    return entries_;
}

std::vector<std::string> Journal::texts() const
{
    std::vector<std::string> texts;
    for (const Entry& entry : entries())
        texts.push_back(entry.text);
    return texts;
}

std::vector<std::string> Journal::textsUnderMutex() const
{
    std::vector<std::string> texts;
    for (const Entry& entry : entries()) {
        if (!entry.mutexFree)
            texts.push_back(entry.text);
    }
    return texts;
}

void Journal::clear()
{
    const Kep::MutexLock lock(mutex_);
    entries_.clear();
}

} // namespace Fakes
