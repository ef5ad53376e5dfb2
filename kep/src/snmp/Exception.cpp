#include "Kep/Snmp/Exception.h"

namespace Kep::Snmp {

Exception::~Exception() = default;

} // namespace Kep::Snmp
