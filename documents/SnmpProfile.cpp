#include "documents/SnmpProfile.h"

#include "Kep/Exception.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace PrinterDiscoveryPlugin {
namespace {

using Kep::Snmp::AuthProtocol;
using Kep::Snmp::PrivacyProtocol;

constexpr int defaultPort = 161;

template <class Code> struct NamedProtocol {
    std::string_view name;
    Code code;
};

constexpr std::array<NamedProtocol<AuthProtocol>, 2> authProtocols = {{
    {"MD5", AuthProtocol::md5},
    {"SHA1", AuthProtocol::sha1},
}};

constexpr std::array<NamedProtocol<PrivacyProtocol>, 9> privacyProtocols = {{
    {"DES", PrivacyProtocol::des},
    {"DES3EDE", PrivacyProtocol::des3ede},
    {"AES128", PrivacyProtocol::aes128},
    {"IDEA", PrivacyProtocol::idea},
    {"AES192", PrivacyProtocol::aes192},
    {"AES256", PrivacyProtocol::aes256},
    {"AES128W3DESKEYEXT", PrivacyProtocol::aes128With3DesKeyExtension},
    {"AES192W3DESKEYEXT", PrivacyProtocol::aes192With3DesKeyExtension},
    {"AES256W3DESKEYEXT", PrivacyProtocol::aes256With3DesKeyExtension},
}};

template <class Code> int codeOf(std::string_view name, std::span<const NamedProtocol<Code>> protocols)
{
    for (const NamedProtocol<Code>& protocol : protocols) {
        if (protocol.name == name)
            return static_cast<int>(protocol.code);
    }
    return static_cast<int>(Code::none);
}

std::string text(const Kep::Variant& object, const char* key)
{
    return static_cast<std::string>(object[key]);
}

/// The number under `key`; nothing when it is null or absent.
std::optional<int> optionalInt(const Kep::Variant& object, const char* key)
{
    Kep::Variant value;
    if (!object.contains(key, value) || value.isNull())
        return std::nullopt;
    return static_cast<int>(value);
}

template <class CommunityProfile> std::shared_ptr<Kep::Snmp::Profile> parseCommunities(const Kep::Variant& object)
{
    auto profile = std::make_shared<CommunityProfile>();
    profile->readCommunity = text(object, "communityRead");
    profile->writeCommunity = text(object, "communityWrite");
    return profile;
}

std::shared_ptr<Kep::Snmp::Profile> parseUser(const Kep::Variant& object)
{
    auto profile = std::make_shared<Kep::Snmp::ProfileV3>();
    profile->userName = text(object, "usm");
    profile->authProtocol = parseAuthProtocol(text(object, "authProtocol"));
    profile->authPassword = text(object, "authPwd");
    profile->privacyProtocol = parsePrivacyProtocol(text(object, "privacyProtocol"));
    profile->privacyPassword = text(object, "privacyPwd");
    profile->context = text(object, "context");
    return profile;
}

std::shared_ptr<Kep::Snmp::Profile> parseCredentials(const Kep::Variant& object)
{
    const std::optional<int> version = optionalInt(object, "snmpVersion");
    switch (version.value_or(0)) {
    case 1:
        return parseCommunities<Kep::Snmp::ProfileV1>(object);
    case 2:
        return parseCommunities<Kep::Snmp::ProfileV2>(object);
    case 3:
        return parseUser(object);
    default:
        throw Kep::GenericException("member \"snmpVersion\": expected 1, 2 or 3, found " +
                                    (version ? std::to_string(*version) : "nothing"));
    }
}

} // namespace

std::shared_ptr<Kep::Snmp::Profile> parseSnmpProfile(const Kep::Variant& profile)
{
    std::shared_ptr<Kep::Snmp::Profile> result = parseCredentials(profile);
    result->port = static_cast<std::uint16_t>(optionalInt(profile, "snmpPort").value_or(defaultPort));
    return result;
}

int parseAuthProtocol(const std::string& name)
{
    return codeOf<AuthProtocol>(name, authProtocols);
}

int parsePrivacyProtocol(const std::string& name)
{
    return codeOf<PrivacyProtocol>(name, privacyProtocols);
}

} // namespace PrinterDiscoveryPlugin
