/// What SNMP sessions throw.
#pragma once

#include "Kep/Exception.h"

namespace Kep::Snmp {

/// A request that failed: no answer, an unreachable port, an error status, a malformed or foreign answer, a profile
/// that cannot work, a session's budget used up. The message says which; it never holds a community or a password.
class KEP_API Exception : public GenericException {
public:
    using GenericException::GenericException;
    ~Exception() override;
};

} // namespace Kep::Snmp
