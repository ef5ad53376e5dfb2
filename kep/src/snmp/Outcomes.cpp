#include "Kep/Host/Outcomes.h"

#include "Kep/Mutex.h"
#include "base/Immortal.h"
#include "snmp/SessionRecord.h"

#include <atomic>
#include <utility>

namespace Kep {
namespace {

/// The one of the process.
class ObserverPlace {
public:
    void set(std::shared_ptr<Host::IOutcomeObserver> observer)
    {
        const MutexLock lock(mutex_);
        taken_ = observer != nullptr;
        observer_.swap(observer);
    }

    std::shared_ptr<Host::IOutcomeObserver> get()
    {
        if (!taken_.load(std::memory_order_relaxed)) {
            return nullptr;
        }
        const MutexLock lock(mutex_);
        return observer_;
    }

private:
    std::atomic<bool> taken_{false};
    Mutex mutex_;
    std::shared_ptr<Host::IOutcomeObserver> observer_ KEP_GUARDED_BY(mutex_);
};

ObserverPlace& place()
{
    static Immortal<ObserverPlace> instance;
    return *instance;
}

} // namespace

namespace Host {

IOutcomeObserver::~IOutcomeObserver() = default;

void observeOutcomes(std::shared_ptr<IOutcomeObserver> observer)
{
    place().set(std::move(observer));
}

} // namespace Host

std::shared_ptr<Host::IOutcomeObserver> Snmp::outcomeObserver()
{
    return place().get();
}

} // namespace Kep
