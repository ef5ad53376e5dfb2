#include "settings/HostSettings.h"

#include "Kep/Mutex.h"
#include "settings/SettingTable.h"

namespace Kep {
namespace {

struct InForce {
    Mutex mutex;
    HostSettings settings KEP_GUARDED_BY(mutex);
};

InForce& inForce()
{
    static InForce instance; // nothing in it needs destruction, so threads may read it until the process ends
    return instance;
}

} // namespace

HostSettings hostSettings()
{
    InForce& current = inForce();
    MutexLock lock(current.mutex);
    return current.settings;
}

void applyHostSettings(const std::map<std::string, std::string>& values)
{
    HostSettings settings;
    for (const auto& [key, value] : values) {
        if (key.starts_with("host.")) {
            takeSetting(settings, key, value);
        }
    }
    InForce& current = inForce();
    MutexLock lock(current.mutex);
    current.settings = settings;
}

} // namespace Kep
