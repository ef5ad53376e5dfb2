/// How the messages of one conversation are protected: the seam between SNMP's versions.
#pragma once

#include "snmp/Library.h"
#include "snmp/Reports.h"

namespace Kep::Snmp {

/// Used by one thread at a time; the operations that require `libraryMutex` touch the library.
class Security {
public:
    Security() = default;
    Security(const Security&) = delete;
    Security& operator=(const Security&) = delete;
    virtual ~Security();

    /// Fills in version and credentials. The pointers stay this object's and last as long as it does.
    virtual void describe(netsnmp_session& settings) = 0;

    /// Completes a request that the library has made. False when memory is short.
    virtual bool complete(netsnmp_pdu& request) KEP_REQUIRES(libraryMutex) = 0;

    /// Gives the library what it needs to code and check this conversation's messages, and takes it back. Everything
    /// that the library does with them happens between the two, in one hold of the mutex.
    virtual void enter() KEP_REQUIRES(libraryMutex) = 0;
    virtual void leave() noexcept KEP_REQUIRES(libraryMutex) = 0;

    /// Whether a response that the library found to match is from whom we asked.
    virtual bool accepts(const netsnmp_pdu& response) const = 0;

    /// What a matching report means. May throw `Exception` for one that makes the conversation impossible.
    virtual ReportVerdict onReport(netsnmp_pdu& report) KEP_REQUIRES(libraryMutex) = 0;

    /// Whether every try is a message of its own (RFC 3412, section 6.2); otherwise the first one is sent again.
    virtual bool renewsTries() const = 0;
};

/// Enters a security layer for as long as it lives.
class SecurityScope {
public:
    explicit SecurityScope(Security& security) KEP_REQUIRES(libraryMutex) : security_(security) { security_.enter(); }
    ~SecurityScope() KEP_REQUIRES(libraryMutex) { security_.leave(); }
    SecurityScope(const SecurityScope&) = delete;
    SecurityScope& operator=(const SecurityScope&) = delete;

private:
    Security& security_;
};

} // namespace Kep::Snmp
