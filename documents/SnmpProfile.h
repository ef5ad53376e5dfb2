/// The SNMP credentials and port of a request.
///
/// Pure functions: any thread, no locks.
#pragma once

#include "Kep/Snmp/Profile.h"
#include "Kep/Variant.h"

#include <memory>
#include <string>

namespace PrinterDiscoveryPlugin {

/// Reads an "snmpProfile" object: "snmpVersion" 1 or 2 with "communityRead" and "communityWrite", or 3 with "usm",
/// "authProtocol", "authPwd", "privacyProtocol", "privacyPwd" and "context"; "snmpPort", of which the low 16 bits
/// count, is 161 when null or absent. Texts are stored as they stand. The caller shares the profile and must not
/// change it. Throws `Kep::GenericException` that names the member which is missing, of the wrong kind, or, for
/// "snmpVersion", another number.
std::shared_ptr<Kep::Snmp::Profile> parseSnmpProfile(const Kep::Variant& profile);

/// The code, a `Kep::Snmp::AuthProtocol`, of "MD5" or "SHA1", exactly so written; 1 (none) for every other text.
int parseAuthProtocol(const std::string& name);

/// The code, a `Kep::Snmp::PrivacyProtocol`, of "DES", "DES3EDE", "AES128", "IDEA", "AES192", "AES256",
/// "AES128W3DESKEYEXT", "AES192W3DESKEYEXT" or "AES256W3DESKEYEXT", exactly so written; 1 (none) for every other
/// text.
int parsePrivacyProtocol(const std::string& name);

} // namespace PrinterDiscoveryPlugin
