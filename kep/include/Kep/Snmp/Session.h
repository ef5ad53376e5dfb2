/// A conversation with one SNMP agent.
#pragma once

#include "Kep/Export.h"
#include "Kep/Variant.h"

#include <string>

namespace Kep::Snmp {

/// Used by one thread at a time; different sessions are independent and may run at once, thousands of them. Each
/// operation blocks its caller until it is answered or given up; no lock is held while it waits.
///
/// Object identifiers are dotted texts with a leading dot. Every failure throws `Exception`. Answers count only from
/// the address asked and with the request's own id; a port that the network reports closed ends the wait at once. The
/// time-out of a try and the number of retries are the host settings "host.snmp.timeout" and "host.snmp.retries".
class KEP_API Session {
public:
    virtual ~Session();

    /// Binds the session to the agent at `address`, a dotted quad, and for SNMPv3 finds its engine out
    /// (RFC 3414, section 4). To be called once, before the requests. Waits its turn when the process has no
    /// descriptor free. Throws too for a profile that cannot work: a password under 8 bytes (RFC 3414,
    /// section 11.2), privacy without authentication, a protocol that the engine does not offer.
    virtual void open(const std::string& address) = 0;

    /// GetNextRequest (RFC 3416, section 4.2.2): what follows `oid` in the agent's order, as `nextOid` and `value`.
    /// Past the end, `nextOid` is `oid` as given and `value` is null. An answer below `oid` throws; an equal one is
    /// delivered. A session has a budget of 4,096 of these requests and of 60 s for them; beyond it, throws.
    /// Text that is no OID throws. `nextOid` may be the same object as `oid`.
    virtual void getNext(const std::string& oid, std::string& nextOid, Variant& value) = 0;

    /// GetRequest (RFC 3416, section 4.2.1): the value of `oid`. An empty text when the agent has none (noSuchName,
    /// noSuchObject, noSuchInstance, NULL) and when `oid` is no OID.
    virtual void get(const std::string& oid, Variant& value) = 0;
};

} // namespace Kep::Snmp
