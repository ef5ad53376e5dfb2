/// Reading of the `.snmprec` form: a line an object, `OID|type|value`.
///
/// The type is the decimal ASN.1 tag: 2 INTEGER, 4 OCTET STRING, 5 NULL, 6 OBJECT IDENTIFIER, 64 IpAddress,
/// 65 Counter32, 66 Gauge32, 67 TimeTicks, 68 Opaque, 70 Counter64. An `x` after 4, 64 or 68 says that the value is
/// hexadecimal. The value is everything after the second bar, other bars and blanks included.
#pragma once

#include "lab/Profile.h"

#include <string_view>

namespace Lab {

/// The profile `name` that `text` describes; `file` names the text in messages. Lines end with LF or CR LF; empty ones
/// are passed over, and they may come in any order. Throws `Error` with file, line, what was expected and what was
/// found when a line is no object, when an OID comes twice, and when there is no object at all.
ProfilePtr readSnmprec(const std::string& name, const std::string& file, std::string_view text);

} // namespace Lab
