#include "snmp/Security.h"

namespace Kep::Snmp {

Security::~Security() = default;

} // namespace Kep::Snmp
