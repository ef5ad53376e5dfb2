/// Credentials that the user gives, over those that stand in for them.
#include "host/Credentials.h"

#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class DefaultCredentials : public testing::Test {
protected:
    Credentials given;
    Credentials defaults;

    static Given by(const std::string& value, const std::string& source) { return {value, source}; }

    JsonValue profile() const
    {
        const CredentialNames names{"", "-v 2c", "-v 3", "-u", "-a", "-A", "-x", "-X"};
        return snmpProfile(given, defaults, names, 161);
    }

    std::string member(const char* key) const { return profile().at(key).get<std::string>(); }

    std::string refusal() const
    {
        try {
            return profile().dump();
        } catch (const UsageError& error) {
            return error.what();
        }
    }

    /// As a configuration file for version 3 with authentication and privacy has them.
    void privateDefaults()
    {
        defaults.version = by("3", "defVersion");
        defaults.user = by("admin", "defSecurityName");
        defaults.level = by("authPriv", "defSecurityLevel");
        defaults.authProtocol = by("SHA", "defAuthType");
        defaults.authPassword = by("authentic", "defAuthPassphrase");
        defaults.privProtocol = by("AES", "defPrivType");
        defaults.privPassword = by("privately", "defPrivPassphrase");
        defaults.context = by("floor", "defContext");
        defaults.community = by("unused", "defCommunity");
    }
};

TEST_F(DefaultCredentials, StandInForEverythingThatIsNotGiven)
{
    privateDefaults();
    EXPECT_EQ(profile().dump(),
              R"({"snmpVersion":3,"snmpPort":161,"usm":"admin","authProtocol":"SHA1","authPwd":"authentic",)"
              R"("privacyProtocol":"AES128","privacyPwd":"privately","context":"floor"})");
}

TEST_F(DefaultCredentials, CountLessThanWhatIsGiven)
{
    privateDefaults();
    given.user = by("other", "-u");
    given.authProtocol = by("MD5", "-a");
    given.privPassword = by("otherwise", "-X");
    given.context = by("", "-n");
    EXPECT_EQ(member("usm"), "other");
    EXPECT_EQ(member("authProtocol"), "MD5");
    EXPECT_EQ(member("authPwd"), "authentic");
    EXPECT_EQ(member("privacyPwd"), "otherwise");
    EXPECT_EQ(member("context"), "");
}

TEST_F(DefaultCredentials, WithoutUseAreNoOffence)
{
    privateDefaults();
    given.version = by("2c", "-v");
    EXPECT_EQ(profile().dump(), R"({"snmpVersion":2,"snmpPort":161,"communityRead":"unused","communityWrite":""})");
    given.version = {};
    given.level = by("noAuthNoPriv", "-l");
    EXPECT_EQ(member("authPwd") + member("privacyPwd"), "");
    given.level = by("authNoPriv", "-l");
    EXPECT_EQ(member("authPwd"), "authentic");
    EXPECT_EQ(member("privacyPwd"), "");
}

TEST_F(DefaultCredentials, OfAnotherVersionLeaveWhatIsGivenRefused)
{
    privateDefaults();
    given.community = by("public", "-c");
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-c is for SNMP versions 1 and 2c"), HasSubstr("-v 2c")));
    given.version = by("1", "-v");
    EXPECT_EQ(member("communityRead"), "public");
    given = {};
    defaults.version = by("2c", "defVersion");
    given.user = by("admin", "-u");
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-u is for SNMP version 3"), HasSubstr("-v 3")));
}

TEST_F(DefaultCredentials, TheLevelFollowsFromDefaultProtocolsToo)
{
    privateDefaults();
    defaults.level = {};
    EXPECT_EQ(member("privacyProtocol"), "AES128");
    defaults.privProtocol = {};
    EXPECT_EQ(member("authProtocol"), "SHA1");
    EXPECT_EQ(member("privacyProtocol"), "");
    defaults.authProtocol = {};
    EXPECT_EQ(member("authProtocol"), "");
}

TEST_F(DefaultCredentials, GivenProtocolsRaiseTheDefaultLevel)
{
    privateDefaults();
    defaults.level = by("noAuthNoPriv", "defSecurityLevel");
    EXPECT_EQ(member("authProtocol"), "");
    given.authProtocol = by("MD5", "-a");
    EXPECT_EQ(member("authProtocol"), "MD5");
    EXPECT_EQ(member("privacyProtocol"), "");
    given.privProtocol = by("DES", "-x");
    EXPECT_EQ(member("privacyProtocol"), "DES");
    defaults.level = by("authPriv", "defSecurityLevel");
    given.privProtocol = {};
    EXPECT_EQ(member("privacyProtocol"), "AES128");
}

TEST_F(DefaultCredentials, WrongOnesAreNamedByTheirSource)
{
    privateDefaults();
    defaults.authProtocol = by("SHA-999", "defAuthType of /etc/snmp/snmp.conf");
    EXPECT_THAT(refusal(), HasSubstr("defAuthType of /etc/snmp/snmp.conf: \"SHA-999\" is not known"));
    defaults.authProtocol = by("SHA", "defAuthType");
    defaults.authPassword = by("s3cret", "defPassphrase");
    EXPECT_THAT(refusal(), AllOf(HasSubstr("defPassphrase: a password has at least 8"), Not(HasSubstr("s3cret"))));
    defaults.version = by("4", "defVersion of x");
    EXPECT_THAT(refusal(), HasSubstr("defVersion of x: \"4\" is not known; 1, 2c and 3"));
    given.version = by("2c", "-v");
    EXPECT_EQ(member("communityRead"), "unused");
}

TEST_F(DefaultCredentials, ThatAreMissingAreAskedForByOption)
{
    privateDefaults();
    defaults.privPassword = {};
    EXPECT_THAT(refusal(), HasSubstr("authPriv needs a password: -X"));
    defaults.user = {};
    EXPECT_THAT(refusal(), HasSubstr("-u"));
}

TEST(OverlaidCredentials, TakeTheFirstThatIsThere)
{
    Credentials first;
    first.user = Given{"a", "1"};
    first.community = Given{"", "1"};
    Credentials second;
    second.user = Given{"b", "2"};
    second.community = Given{"c", "2"};
    second.context = Given{"d", "2"};
    const Credentials result = overlaid(first, second);
    EXPECT_EQ(result.user->value, "a");
    EXPECT_EQ(result.community->value, "");
    EXPECT_EQ(result.context->value, "d");
    EXPECT_EQ(result.context->by, "2");
    EXPECT_FALSE(result.version);
}

} // namespace
} // namespace Host
