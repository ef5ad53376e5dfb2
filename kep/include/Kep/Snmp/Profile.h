/// How to talk SNMP to devices: version, credentials, port.
///
/// Plain values. Any number of threads may read a profile that nobody changes any more; `clone` makes a copy that
/// the caller owns.
#pragma once

#include "Kep/Export.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Kep::Snmp {

/// Authentication protocols of the user-based security model (RFC 3414).
enum class AuthProtocol : std::int32_t { none = 1, md5 = 2, sha1 = 3 };

/// Privacy protocols: RFC 3414 (DES), RFC 3826 (AES128), the expired draft-blumenthal-aes-usm-04 (AES192, AES256)
/// and the forms whose key is extended as draft-reeder-snmpv3-usm-3desede-00 does.
enum class PrivacyProtocol : std::int32_t {
    none = 1,
    des = 2,
    des3ede = 3,
    aes128 = 4,
    idea = 9,
    aes192 = 20,
    aes256 = 21,
    aes128With3DesKeyExtension = 22,
    aes192With3DesKeyExtension = 23,
    aes256With3DesKeyExtension = 24,
};

class KEP_API Profile {
public:
    Profile() = default;
    virtual ~Profile();
    virtual std::shared_ptr<Profile> clone() const = 0;

    std::uint16_t port = 0; ///< UDP port of the agents

protected:
    Profile(const Profile&) = default;
    Profile& operator=(const Profile&) = default;
};

/// SNMPv1 (RFC 1157).
class KEP_API ProfileV1 : public Profile {
public:
    ProfileV1() = default;
    ~ProfileV1() override;
    std::shared_ptr<Profile> clone() const override;

    std::string readCommunity;
    std::string writeCommunity;
};

/// SNMPv2c (RFC 1901).
class KEP_API ProfileV2 : public Profile {
public:
    ProfileV2() = default;
    ~ProfileV2() override;
    std::shared_ptr<Profile> clone() const override;

    std::string readCommunity;
    std::string writeCommunity;
};

/// SNMPv3 with the user-based security model (RFC 3414).
class KEP_API ProfileV3 : public Profile {
public:
    ProfileV3() = default;
    ~ProfileV3() override;
    std::shared_ptr<Profile> clone() const override;

    std::string userName;
    std::int32_t authProtocol = static_cast<std::int32_t>(AuthProtocol::none);
    std::int32_t privacyProtocol = static_cast<std::int32_t>(PrivacyProtocol::none);
    std::string authPassword;
    std::string privacyPassword;
    std::string context; ///< context name; the context engine is the agent's own
};

} // namespace Kep::Snmp
