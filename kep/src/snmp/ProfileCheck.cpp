#include "snmp/ProfileCheck.h"

#include "Kep/Snmp/Exception.h"

namespace Kep::Snmp {

namespace {

constexpr std::size_t longestCommunity = 255; // the library's field
constexpr std::size_t longestUserName = 32;   // RFC 3414, section 2.4
constexpr std::size_t longestContext = 255;   // the library's field
constexpr std::size_t shortestPassword = 8;   // RFC 3414, section 11.2

void require(bool holds, const std::string& problem)
{
    if (!holds)
        throw Exception("the SNMP profile cannot work: " + problem);
}

void checkCommunity(const std::string& community)
{
    require(community.size() <= longestCommunity, "the community has over 255 bytes");
}

void checkName(const std::string& name, std::size_t longest, const std::string& what)
{
    require(name.size() <= longest, what + " has over " + std::to_string(longest) + " bytes");
    require(name.find('\0') == std::string::npos, what + " holds a NUL byte");
}

bool isOffered(AuthProtocol protocol)
{
    return protocol == AuthProtocol::none || protocol == AuthProtocol::md5 || protocol == AuthProtocol::sha1;
}

bool isOffered(PrivacyProtocol protocol)
{
    switch (protocol) {
    case PrivacyProtocol::none:
    case PrivacyProtocol::des:
    case PrivacyProtocol::aes128:
    case PrivacyProtocol::aes192:
    case PrivacyProtocol::aes256:
    case PrivacyProtocol::aes128With3DesKeyExtension:
    case PrivacyProtocol::aes192With3DesKeyExtension:
    case PrivacyProtocol::aes256With3DesKeyExtension:
        return true;
    default:
        return false;
    }
}

std::string privacyName(PrivacyProtocol protocol)
{
    switch (protocol) {
    case PrivacyProtocol::des3ede:
        return "3DES-EDE";
    case PrivacyProtocol::idea:
        return "IDEA";
    default:
        return "protocol " + std::to_string(static_cast<std::int32_t>(protocol));
    }
}

void checkSecurity(const ProfileV3& profile)
{
    const AuthProtocol auth{profile.authProtocol};
    const PrivacyProtocol privacy{profile.privacyProtocol};
    require(isOffered(auth), "authentication by protocol " + std::to_string(profile.authProtocol) + " is not offered");
    require(isOffered(privacy), "privacy by " + privacyName(privacy) + " is not offered");
    require(privacy == PrivacyProtocol::none || auth != AuthProtocol::none, "privacy needs authentication");
    require(auth == AuthProtocol::none || profile.authPassword.size() >= shortestPassword,
            "the authentication password has under 8 bytes");
    require(privacy == PrivacyProtocol::none || profile.privacyPassword.size() >= shortestPassword,
            "the privacy password has under 8 bytes");
}

void checkUser(const ProfileV3& profile)
{
    require(!profile.userName.empty(), "it names no user");
    checkName(profile.userName, longestUserName, "the user name");
    checkName(profile.context, longestContext, "the context name");
    checkSecurity(profile);
}

} // namespace

void checkProfile(const Profile& profile)
{
    require(profile.port != 0, "its port is 0");
    if (const auto* const v1 = dynamic_cast<const ProfileV1*>(&profile))
        checkCommunity(v1->readCommunity);
    else if (const auto* const v2 = dynamic_cast<const ProfileV2*>(&profile))
        checkCommunity(v2->readCommunity);
    else if (const auto* const v3 = dynamic_cast<const ProfileV3*>(&profile))
        checkUser(*v3);
    else
        require(false, "its version is not known");
}

} // namespace Kep::Snmp
