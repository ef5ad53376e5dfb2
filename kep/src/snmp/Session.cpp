#include "Kep/Snmp/Session.h"

namespace Kep::Snmp {

Session::~Session() = default;

} // namespace Kep::Snmp
