/// One record of what the system under test did to the world, kept by all fakes together.
///
/// Every call of a fake becomes an entry such as "open 10.0.0.1", "get .1.3.6.1", "sleep 1000 ms", in the order of the
/// calls. A test makes one `Journal` before it uses a fake; without one, entries go nowhere. Any thread.
#pragma once

#include "Kep/Mutex.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace PrinterDiscoveryPlugin {
class PdExecutor;
}

namespace Fakes {

/// Whether nobody holds the mutex of `run` at this moment. The answer is exact: the mutex is tried, by a thread made
/// for the purpose, so the holder may ask as well.
bool isMutexFree(PrinterDiscoveryPlugin::PdExecutor& run);

class Journal {
public:
    struct Entry {
        std::string text;
        bool mutexFree; ///< of the run that is watched; true when none is
    };

    Journal();
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// For the fakes. Returns whether the mutex of the watched run was free.
    static bool record(const std::string& text);

    /// From now on entries tell whether the mutex of `run` was free. For tests with one thread.
    void watch(PrinterDiscoveryPlugin::PdExecutor& run);
    void watchNothing();

    /// Calls `action` during each call that is entered as `text`, on the thread that makes it.
    void during(const std::string& text, std::function<void()> action);

    std::vector<Entry> entries() const;
    std::vector<std::string> texts() const;

    /// The texts of the entries that were made while the mutex was held.
    std::vector<std::string> textsUnderMutex() const;
    void clear();

private:
    mutable Kep::Mutex mutex_;
    PrinterDiscoveryPlugin::PdExecutor* watched_ KEP_GUARDED_BY(mutex_) = nullptr;
    std::map<std::string, std::function<void()>> actions_ KEP_GUARDED_BY(mutex_);
    std::vector<Entry> entries_ KEP_GUARDED_BY(mutex_);
};

} // namespace Fakes
