#include "snmp/LibrarySession.h"

#include <climits>

namespace Kep::Snmp {

namespace {

// With any retry left the library would send again by itself, and depending on its build without telling us why, when
// an agent reports that a message is out of its time window.
constexpr int noRetries = -1;

} // namespace

LibrarySession::~LibrarySession()
{
    if (handle_ == nullptr)
        return;
    const MutexLock lock(libraryMutex);
    snmp_sess_close(handle_);
}

bool LibrarySession::open(netsnmp_session& settings, netsnmp_transport* transport, MessageHook onMessage)
{
    if (transport == nullptr)
        return false;
    settings.timeout = 0; // requests expire at once, so that `resend` may come at any time
    handle_ = snmp_sess_add(&settings, transport, nullptr, onMessage);
    if (handle_ == nullptr)
        return false;
    // Cleared by the call above; without it the library would ask for the engine itself and wait for the answer.
    snmp_sess_session(handle_)->flags |= SNMP_FLAGS_DONT_PROBE;
    snmp_sess_session(handle_)->retries = noRetries;
    return true;
}

void LibrarySession::resend()
{
    netsnmp_session* const session = snmp_sess_session(handle_);
    session->retries = INT_MAX;
    snmp_sess_timeout(handle_);
    session->retries = noRetries;
}

} // namespace Kep::Snmp
