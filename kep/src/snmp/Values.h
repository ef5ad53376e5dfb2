/// What agents answer, as values of the framework.
#pragma once

#include "Kep/Variant.h"
#include "snmp/Library.h"
#include "snmp/Oid.h"

namespace Kep::Snmp {

/// `length` arcs as the library holds them.
Oid oidOf(const oid* arcs, std::size_t length);

/// Whether a variable binding carries a value: not NULL and none of the exceptions of RFC 3416, section 2.5.
bool hasValue(const netsnmp_variable_list& binding);

/// The binding's value. Octet strings (as they came) and object identifiers (dotted, leading dot) are text, the other
/// types their SNMP kinds. Requires `hasValue(binding)`.
Variant valueOf(const netsnmp_variable_list& binding) KEP_REQUIRES(libraryMutex);

} // namespace Kep::Snmp
