/// SNMP sessions that answer from a script, in place of the framework's engine.
///
/// Entered in the `Journal` as "engine", "create", "open 10.0.0.1", "getNext OID", "get OID", and, when the session and
/// the factory are destroyed, "release session" and "release factory".
#pragma once

#include "Kep/Mutex.h"
#include "Kep/Snmp/Profile.h"
#include "Kep/Variant.h"

#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Fakes {

/// What a request leads to: a value, or an exception.
struct SnmpReply {
    std::string nextOid; ///< of a get-next
    Kep::Variant value;
    std::exception_ptr failure;
};

SnmpReply answer(const std::string& text);
SnmpReply answer(Kep::Variant value);
SnmpReply row(const std::string& oid, const std::string& text);
SnmpReply row(const std::string& oid, Kep::Variant value);

/// A `Kep::Snmp::Exception`.
SnmpReply noAnswer();

template <class Exception> SnmpReply throwing(Exception exception)
{
    return {{}, {}, std::make_exception_ptr(std::move(exception))};
}

/// The host at one address. It accepts `open` unless told otherwise, and answers no request that is not scripted.
/// Scripted before it is asked; then any thread.
class FakeAgent {
public:
    /// Each list is the replies to the requests for one OID, in order; the last one serves from then on.
    void onOpen(std::vector<SnmpReply> replies);
    void onGetNext(const std::string& oid, std::vector<SnmpReply> replies);
    void onGet(const std::string& oid, std::vector<SnmpReply> replies);

    /// A device table whose first row is a printer, and nothing else.
    void isPrinter();

    /// For the sessions.
    SnmpReply reply(const std::string& request);

private:
    struct Script {
        std::vector<SnmpReply> replies;
        std::size_t next = 0;
    };
    void script(const std::string& request, std::vector<SnmpReply> replies);

    Kep::Mutex mutex_;
    std::map<std::string, Script> scripts_ KEP_GUARDED_BY(mutex_); // by operation, blank, OID
};

/// A test makes one before sessions are made. Any thread.
class FakeSnmp {
public:
    FakeSnmp();
    ~FakeSnmp();
    FakeSnmp(const FakeSnmp&) = delete;
    FakeSnmp& operator=(const FakeSnmp&) = delete;

    /// The agent at `address`, made on first use. `open` of any other address throws `Kep::Snmp::Exception`.
    FakeAgent& agent(const std::string& address);

    /// From now on the engine is not to be had, or makes no sessions.
    void engineThrows(std::exception_ptr failure);
    void createThrows(std::exception_ptr failure);

    /// The profiles that sessions were created with, in order.
    std::vector<std::shared_ptr<Kep::Snmp::Profile>> profiles() const;

    /// For the framework's classes.
    static FakeSnmp& current();
    void throwIfNoEngine() const;
    void created(const std::shared_ptr<Kep::Snmp::Profile>& profile);
    FakeAgent* find(const std::string& address);

private:
    mutable Kep::Mutex mutex_;
    std::map<std::string, std::unique_ptr<FakeAgent>> agents_ KEP_GUARDED_BY(mutex_);
    std::exception_ptr engineFailure_ KEP_GUARDED_BY(mutex_);
    std::exception_ptr createFailure_ KEP_GUARDED_BY(mutex_);
    std::vector<std::shared_ptr<Kep::Snmp::Profile>> profiles_ KEP_GUARDED_BY(mutex_);
};

} // namespace Fakes
