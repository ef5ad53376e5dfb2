#include "documents/SnmpProfile.h"

#include "Kep/Exception.h"
#include "Kep/Json.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

namespace PrinterDiscoveryPlugin {
namespace {

using Kep::Snmp::Profile;
using Kep::Snmp::ProfileV1;
using Kep::Snmp::ProfileV2;
using Kep::Snmp::ProfileV3;
using testing::AllOf;
using testing::HasSubstr;
using testing::ThrowsMessage;

const std::string user = R"("usm":"u","authProtocol":"SHA1","authPwd":"a","privacyProtocol":"AES128","privacyPwd":"p",
                            "context":"c")";
const std::string communities = R"("communityRead":"r","communityWrite":"w")";

/// The profile of an object with all members that any version knows, and `version`.
std::shared_ptr<Profile> parse(const std::string& version, const std::string& more = "")
{
    return parseSnmpProfile(Kep::Json::parse("{" + user + "," + communities + version + more + "}"));
}

template <class Kind> std::shared_ptr<Kind> parseAs(const std::string& version)
{
    return std::dynamic_pointer_cast<Kind>(parse(version));
}

void expectRefused(const std::string& json, const std::string& reason)
{
    EXPECT_THAT([&] { parseSnmpProfile(Kep::Json::parse(json)); },
                ThrowsMessage<Kep::GenericException>(HasSubstr(reason)));
}

TEST(SnmpProfile, Version1CarriesCommunities)
{
    const auto profile = parseAs<ProfileV1>(R"(,"snmpVersion":1)");
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->readCommunity, "r");
    EXPECT_EQ(profile->writeCommunity, "w");
}

TEST(SnmpProfile, Version2CarriesCommunities)
{
    const auto profile = parseAs<ProfileV2>(R"(,"snmpVersion":2)");
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->readCommunity, "r");
    EXPECT_EQ(profile->writeCommunity, "w");
}

TEST(SnmpProfile, Version3CarriesTheUser)
{
    const auto profile = parseAs<ProfileV3>(R"(,"snmpVersion":3)");
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->userName, "u");
    EXPECT_EQ(profile->authProtocol, 3);
    EXPECT_EQ(profile->authPassword, "a");
    EXPECT_EQ(profile->privacyProtocol, 4);
    EXPECT_EQ(profile->privacyPassword, "p");
    EXPECT_EQ(profile->context, "c");
}

TEST(SnmpProfile, IsOfOneVersionOnly)
{
    EXPECT_EQ(parseAs<ProfileV2>(R"(,"snmpVersion":1)"), nullptr);
    EXPECT_EQ(parseAs<ProfileV3>(R"(,"snmpVersion":1)"), nullptr);
    EXPECT_EQ(parseAs<ProfileV1>(R"(,"snmpVersion":2)"), nullptr);
    EXPECT_EQ(parseAs<ProfileV3>(R"(,"snmpVersion":2)"), nullptr);
    EXPECT_EQ(parseAs<ProfileV1>(R"(,"snmpVersion":3)"), nullptr);
    EXPECT_EQ(parseAs<ProfileV2>(R"(,"snmpVersion":3)"), nullptr);
}

TEST(SnmpProfile, PortIs161WhenAbsentOrNull)
{
    for (const char* version : {R"(,"snmpVersion":1)", R"(,"snmpVersion":2)", R"(,"snmpVersion":3)"}) {
        EXPECT_EQ(parse(version)->port, 161);
        EXPECT_EQ(parse(version, R"(,"snmpPort":null)")->port, 161);
    }
}

TEST(SnmpProfile, PortIsReadForEveryVersion)
{
    for (const char* version : {R"(,"snmpVersion":1)", R"(,"snmpVersion":2)", R"(,"snmpVersion":3)"})
        EXPECT_EQ(parse(version, R"(,"snmpPort":1161)")->port, 1161);
}

TEST(SnmpProfile, PortKeepsItsLow16Bits)
{
    const std::string version = R"(,"snmpVersion":2)";
    EXPECT_EQ(parse(version, R"(,"snmpPort":65535)")->port, 65535);
    EXPECT_EQ(parse(version, R"(,"snmpPort":65536)")->port, 0);
    EXPECT_EQ(parse(version, R"(,"snmpPort":65697)")->port, 161);
    EXPECT_EQ(parse(version, R"(,"snmpPort":-1)")->port, 65535);
    EXPECT_EQ(parse(version, R"(,"snmpPort":0)")->port, 0);
}

TEST(SnmpProfile, TextsAreStoredAsTheyStand)
{
    const auto profile = std::dynamic_pointer_cast<ProfileV3>(parseSnmpProfile(Kep::Json::parse(
        R"({"snmpVersion":3,"usm":" Ann ","authProtocol":"","authPwd":"","privacyProtocol":"DES","privacyPwd":"x",
            "context":""})")));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->userName, " Ann ");
    EXPECT_EQ(profile->authProtocol, 1);
    EXPECT_EQ(profile->authPassword, "");
    EXPECT_EQ(profile->privacyProtocol, 2);
    EXPECT_EQ(profile->privacyPassword, "x");
    EXPECT_EQ(profile->context, "");
}

TEST(SnmpProfile, UnknownProtocolNamesAreNoErrors)
{
    const auto profile = std::dynamic_pointer_cast<ProfileV3>(parseSnmpProfile(Kep::Json::parse(
        R"({"snmpVersion":3,"usm":"u","authProtocol":"SHA512","authPwd":"a","privacyProtocol":"ROT13","privacyPwd":"p",
            "context":""})")));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->authProtocol, 1);
    EXPECT_EQ(profile->privacyProtocol, 1);
}

TEST(SnmpProfile, OtherVersionsAreRefusedByName)
{
    for (const char* version : {"0", "4", "-1", "22"}) {
        EXPECT_THAT([&] { parse(std::string(R"(,"snmpVersion":)") + version); },
                    ThrowsMessage<Kep::GenericException>(
                        AllOf(HasSubstr("\"snmpVersion\""), HasSubstr("1, 2 or 3"), HasSubstr(version))));
    }
}

TEST(SnmpProfile, NoVersionIsRefusedByName)
{
    expectRefused("{" + communities + "}", "\"snmpVersion\"");
    expectRefused("{" + communities + R"(,"snmpVersion":null})", "expected 1, 2 or 3");
}

TEST(SnmpProfile, VersionOfAnotherKindIsRefused)
{
    expectRefused("{" + communities + R"(,"snmpVersion":"2"})", "\"snmpVersion\"");
}

TEST(SnmpProfile, MissingMembersAreRefusedByName)
{
    expectRefused(R"({"snmpVersion":1,"communityWrite":"w"})", "\"communityRead\"");
    expectRefused(R"({"snmpVersion":2,"communityRead":"r"})", "\"communityWrite\"");
    expectRefused(R"({"snmpVersion":2,"communityRead":null,"communityWrite":"w"})", "\"communityRead\"");
}

TEST(SnmpProfile, MissingMembersOfTheUserAreRefusedInTheirOrder)
{
    std::string given = R"("snmpVersion":3)";
    for (const char* key : {"usm", "authProtocol", "authPwd", "privacyProtocol", "privacyPwd", "context"}) {
        expectRefused("{" + given + "}", std::string("\"") + key + "\"");
        given += std::string(",\"") + key + "\":\"x\"";
    }
    EXPECT_NE(parseSnmpProfile(Kep::Json::parse("{" + given + "}")), nullptr);
}

TEST(SnmpProfile, PortOfAnotherKindIsRefused)
{
    EXPECT_THAT([] { parse(R"(,"snmpVersion":1)", R"(,"snmpPort":"161")"); },
                ThrowsMessage<Kep::GenericException>(HasSubstr("\"snmpPort\"")));
}

TEST(SnmpProfile, MessagesDoNotHoldSecrets)
{
    try {
        parseSnmpProfile(Kep::Json::parse(R"({"snmpVersion":7,"communityRead":"secret","communityWrite":"secret"})"));
        FAIL() << "accepted";
    } catch (const Kep::GenericException& exception) {
        EXPECT_THAT(exception.what(), testing::Not(HasSubstr("secret")));
    }
}

TEST(SnmpProtocolNames, AuthenticationCodes)
{
    EXPECT_EQ(parseAuthProtocol("MD5"), 2);
    EXPECT_EQ(parseAuthProtocol("SHA1"), 3);
    for (const char* other : {"", "md5", "sha1", "SHA", "SHA-1", "SHA1 ", " MD5", "none"})
        EXPECT_EQ(parseAuthProtocol(other), 1) << other;
}

TEST(SnmpProtocolNames, PrivacyCodes)
{
    const std::pair<const char*, int> codes[] = {
        {"DES", 2},
        {"DES3EDE", 3},
        {"AES128", 4},
        {"IDEA", 9},
        {"AES192", 20},
        {"AES256", 21},
        {"AES128W3DESKEYEXT", 22},
        {"AES192W3DESKEYEXT", 23},
        {"AES256W3DESKEYEXT", 24},
    };
    for (const auto& [name, code] : codes)
        EXPECT_EQ(parsePrivacyProtocol(name), code) << name;
}

TEST(SnmpProtocolNames, OtherPrivacyNamesMeanNone)
{
    for (const char* other : {"", "AES", "aes128", "3DES", "AES128W3DESKEYEX", "AES128W3DESKEYEXTT", "DES3", "AES128 "})
        EXPECT_EQ(parsePrivacyProtocol(other), 1) << other;
}

TEST(SnmpProtocolNames, ANulIsPartOfTheText)
{
    EXPECT_EQ(parseAuthProtocol(std::string("MD5\0", 4)), 1);
    EXPECT_EQ(parsePrivacyProtocol(std::string("DES\0", 4)), 1);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
