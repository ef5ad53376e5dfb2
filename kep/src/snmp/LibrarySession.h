/// A session inside the library.
#pragma once

#include "snmp/Library.h"

namespace Kep::Snmp {

/// Owns the session and with it its transport and pending requests. Used by one thread at a time.
class LibrarySession {
public:
    LibrarySession() = default;
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
    ~LibrarySession() KEP_EXCLUDES(libraryMutex);

    /// What the library calls for a message that it has read, with the result of reading it; 0 makes it drop one that
    /// was good.
    using MessageHook = int (*)(netsnmp_session*, netsnmp_pdu*, int);

    /// Opens it as `settings` says over `transport`, which the library owns from then on, also on failure. False when
    /// memory is short or the library refuses the settings.
    bool open(netsnmp_session& settings, netsnmp_transport* transport, MessageHook onMessage)
        KEP_REQUIRES(libraryMutex);

    /// Sends the pending request again as a message of its own. Requires it to be open.
    void resend() KEP_REQUIRES(libraryMutex);

    /// What the library's functions take. Requires it to be open.
    void* handle() const noexcept { return handle_; }

private:
    void* handle_ = nullptr;
};

} // namespace Kep::Snmp
