#include "ChosenSettings.h"

#include "Kep/Mutex.h"
#include "settings/HostSettings.h"

namespace {

Kep::Mutex mutex;
Kep::HostSettings inForce;

void put(const Kep::HostSettings& settings)
{
    const Kep::MutexLock lock(mutex);
    inForce = settings;
}

} // namespace

// Takes the place of the framework's own.
Kep::HostSettings Kep::hostSettings()
{
    const MutexLock lock(mutex);
    return inForce;
}

ChosenSettings::ChosenSettings(std::chrono::milliseconds timeout, int retries, int rate)
{
    Kep::HostSettings settings;
    settings.snmpTimeout = timeout;
    settings.snmpRetries = retries;
    settings.snmpRate = rate;
    put(settings);
}

ChosenSettings::~ChosenSettings()
{
    put({});
}
