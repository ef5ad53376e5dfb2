#include "host/SnmpOptions.h"

#include "host/Errors.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class SnmpProfiles : public testing::Test {
protected:
    SnmpArguments arguments;
    Credentials environment;
    TemporaryFolder folder;

    JsonValue document()
    {
        return snmpProfile(credentialsOf(arguments), environment, optionNames(), portOf(arguments));
    }

    std::string profile() { return document().dump(); }

    std::string member(const char* key) { return document().at(key).get<std::string>(); }

    std::string refusal()
    {
        try {
            return profile();
        } catch (const UsageError& error) {
            return error.what();
        }
    }

    void privateUser()
    {
        arguments.version = "3";
        arguments.user = "admin";
        arguments.level = "authPriv";
        arguments.authProtocol = "SHA";
        arguments.authPassword = "authentic";
        arguments.privProtocol = "AES";
        arguments.privPassword = "privately";
    }
};

TEST_F(SnmpProfiles, DefaultIsVersion2cWithThePublicCommunity)
{
    EXPECT_EQ(profile(), R"({"snmpVersion":2,"snmpPort":161,"communityRead":"public","communityWrite":""})");
}

TEST_F(SnmpProfiles, VersionsAreCalledAsTheToolsCallThem)
{
    arguments.version = "1";
    EXPECT_EQ(document().at("snmpVersion"), 1);
    arguments.version = "2c";
    EXPECT_EQ(document().at("snmpVersion"), 2);
    for (const char* version : {"", "2", "2C", "v1", "4", "3 "}) {
        arguments.version = version;
        EXPECT_THAT(refusal(), AllOf(HasSubstr("-v"), HasSubstr("1, 2c and 3"))) << version;
    }
}

TEST_F(SnmpProfiles, PortsAre1To65535)
{
    for (const char* port : {"1", "161", "65535"}) {
        arguments.port = port;
        EXPECT_EQ(document().at("snmpPort"), std::stoi(port));
    }
    for (const char* port : {"", "0", "-1", "65536", "99999999999", "1x", " 1", "+1", "0x10", "1.5"}) {
        arguments.port = port;
        EXPECT_THAT(refusal(), AllOf(HasSubstr("--port"), HasSubstr("1 to 65535"))) << port;
    }
}

TEST_F(SnmpProfiles, TheCommunityComesFromOptionFileOrEnvironment)
{
    environment.community = Given{"from-environment", "E"};
    EXPECT_EQ(member("communityRead"), "from-environment");
    arguments.communityFile = folder.write("community", "from-file\n");
    EXPECT_EQ(member("communityRead"), "from-file");
    arguments.communityFile.reset();
    arguments.community = "from-option";
    EXPECT_EQ(member("communityRead"), "from-option");
}

TEST_F(SnmpProfiles, AnEmptyCommunityIsTakenAsItIs)
{
    arguments.community = "";
    EXPECT_EQ(member("communityRead"), "");
}

TEST_F(SnmpProfiles, Version3HasUserProtocolsAndContext)
{
    privateUser();
    arguments.context = "floor2";
    arguments.port = "1161";
    EXPECT_EQ(profile(),
              R"({"snmpVersion":3,"snmpPort":1161,"usm":"admin","authProtocol":"SHA1","authPwd":"authentic",)"
              R"("privacyProtocol":"AES128","privacyPwd":"privately","context":"floor2"})");
}

TEST_F(SnmpProfiles, AUserAloneIsNeitherAuthenticatedNorPrivate)
{
    arguments.version = "3";
    arguments.user = "guest";
    EXPECT_EQ(profile(), R"({"snmpVersion":3,"snmpPort":161,"usm":"guest","authProtocol":"","authPwd":"",)"
                         R"("privacyProtocol":"","privacyPwd":"","context":""})");
}

TEST_F(SnmpProfiles, TheLevelFollowsFromTheProtocols)
{
    privateUser();
    arguments.level.reset();
    EXPECT_EQ(member("privacyProtocol"), "AES128");
    arguments.privProtocol.reset();
    arguments.privPassword.reset();
    EXPECT_EQ(member("authProtocol"), "SHA1");
    EXPECT_EQ(member("privacyProtocol"), "");
}

TEST_F(SnmpProfiles, ProtocolsAreKnownByTheirUsualNames)
{
    privateUser();
    for (const auto& [written, meant] : {std::pair{"MD5", "MD5"},
                                         {"md5", "MD5"},
                                         {"SHA", "SHA1"},
                                         {"sha", "SHA1"},
                                         {"SHA1", "SHA1"},
                                         {"SHA-1", "SHA1"}}) {
        arguments.authProtocol = written;
        EXPECT_EQ(member("authProtocol"), meant) << written;
    }
    for (const auto& [written, meant] : {std::pair{"DES", "DES"},
                                         {"des", "DES"},
                                         {"AES", "AES128"},
                                         {"aes", "AES128"},
                                         {"AES128", "AES128"},
                                         {"AES-128", "AES128"},
                                         {"AES-192", "AES192"},
                                         {"AES192", "AES192"},
                                         {"AES-256", "AES256"},
                                         {"aes256", "AES256"},
                                         {"AES-192-C", "AES192W3DESKEYEXT"},
                                         {"AES-256-C", "AES256W3DESKEYEXT"},
                                         {"AES192C", "AES192W3DESKEYEXT"},
                                         {"AES256C", "AES256W3DESKEYEXT"}}) {
        arguments.privProtocol = written;
        EXPECT_EQ(member("privacyProtocol"), meant) << written;
    }
}

TEST_F(SnmpProfiles, UnknownProtocolsAndLevelsAreNamed)
{
    privateUser();
    arguments.authProtocol = "SHA-256";
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-a: \"SHA-256\""), HasSubstr("MD5 and SHA")));
    privateUser();
    arguments.privProtocol = "3DES";
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-x: \"3DES\""), HasSubstr("AES-256-C")));
    privateUser();
    arguments.level = "auth";
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-l: \"auth\""), HasSubstr("noAuthNoPriv, authNoPriv and authPriv")));
}

TEST_F(SnmpProfiles, LevelsAreCaseInsensitive)
{
    privateUser();
    arguments.level = "AUTHPRIV";
    EXPECT_EQ(member("privacyProtocol"), "AES128");
}

TEST_F(SnmpProfiles, PasswordsComeFromFileOrEnvironmentToo)
{
    privateUser();
    arguments.authPassword.reset();
    arguments.privPassword.reset();
    environment.authPassword = Given{"environment-a", "E"};
    environment.privPassword = Given{"environment-x", "E"};
    EXPECT_EQ(member("authPwd"), "environment-a");
    EXPECT_EQ(member("privacyPwd"), "environment-x");
    arguments.authPasswordFile = folder.write("auth", "file-auth\n");
    arguments.privPasswordFile = folder.write("priv", "file-priv\n");
    EXPECT_EQ(member("authPwd"), "file-auth");
    EXPECT_EQ(member("privacyPwd"), "file-priv");
}

TEST_F(SnmpProfiles, SecretsOfTheEnvironmentAreNoOffenceWhereNotNeeded)
{
    environment.community = Given{"community", "E"};
    environment.authPassword = Given{"authentic", "E"};
    environment.privPassword = Given{"privately", "E"};
    arguments.version = "3";
    arguments.user = "guest";
    EXPECT_EQ(member("authPwd"), "");
    arguments = {};
    EXPECT_EQ(member("communityRead"), "community");
}

TEST_F(SnmpProfiles, Version3NeedsAUser)
{
    arguments.version = "3";
    EXPECT_THAT(refusal(), HasSubstr("-u"));
    arguments.user = "";
    EXPECT_THAT(refusal(), HasSubstr("-u"));
}

TEST_F(SnmpProfiles, LevelsNeedTheirProtocolsAndPasswords)
{
    privateUser();
    arguments.authProtocol.reset();
    EXPECT_THAT(refusal(), HasSubstr("needs -a"));
    privateUser();
    arguments.privProtocol.reset();
    EXPECT_THAT(refusal(), HasSubstr("needs -x"));
    privateUser();
    arguments.authPassword.reset();
    EXPECT_THAT(refusal(), HasSubstr("-A, --auth-password-file"));
    privateUser();
    arguments.privPassword.reset();
    EXPECT_THAT(refusal(), HasSubstr("-X, --priv-password-file"));
}

TEST_F(SnmpProfiles, ShortPasswordsAreRefusedAndNotRepeated)
{
    privateUser();
    arguments.authPassword = "seven77";
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-A"), HasSubstr("at least 8"), Not(HasSubstr("seven77"))));
    privateUser();
    arguments.privPassword = "seven77";
    EXPECT_THAT(refusal(), AllOf(HasSubstr("-X"), HasSubstr("at least 8"), Not(HasSubstr("seven77"))));
}

TEST_F(SnmpProfiles, OptionsOfAnotherVersionAreNotIgnored)
{
    const std::string file = folder.write("secret", "s3cret\n"); // those that name a file are read first
    for (auto option : {&SnmpArguments::user, &SnmpArguments::level, &SnmpArguments::authProtocol,
                        &SnmpArguments::authPassword, &SnmpArguments::authPasswordFile, &SnmpArguments::privProtocol,
                        &SnmpArguments::privPassword, &SnmpArguments::privPasswordFile, &SnmpArguments::context}) {
        arguments = {};
        arguments.*option = file;
        EXPECT_THAT(refusal(), HasSubstr("-v 3"));
    }
    for (auto option : {&SnmpArguments::community, &SnmpArguments::communityFile}) {
        privateUser();
        arguments.*option = file;
        EXPECT_THAT(refusal(), HasSubstr("versions 1 and 2c"));
        arguments.*option = std::nullopt;
    }
}

TEST_F(SnmpProfiles, OptionsOfAnotherLevelAreNotIgnored)
{
    privateUser();
    arguments.level = "authNoPriv";
    EXPECT_THAT(refusal(), HasSubstr("-x is for SNMP level authPriv"));
    arguments.level = "noAuthNoPriv";
    EXPECT_THAT(refusal(), HasSubstr("-a is for SNMP levels authNoPriv and authPriv"));
}

TEST_F(SnmpProfiles, TheSecretsOfTheCommandLineAreKnown)
{
    privateUser();
    EXPECT_THAT(secretsOf(arguments), testing::ElementsAre("authentic", "privately"));
    arguments = {};
    arguments.community = "s3cret";
    arguments.communityFile = "file";
    EXPECT_THAT(secretsOf(arguments), testing::ElementsAre("s3cret"));
}

TEST_F(SnmpProfiles, AnyOptionOfCredentialsIsSeen)
{
    EXPECT_EQ(firstCredentialOption(arguments), std::nullopt);
    arguments.port = "1161";
    EXPECT_EQ(firstCredentialOption(arguments), std::nullopt);
    for (auto [option, name] : {std::pair{&SnmpArguments::version, "-v"},
                                {&SnmpArguments::community, "-c"},
                                {&SnmpArguments::communityFile, "--community-file"},
                                {&SnmpArguments::user, "-u"},
                                {&SnmpArguments::level, "-l"},
                                {&SnmpArguments::authProtocol, "-a"},
                                {&SnmpArguments::authPassword, "-A"},
                                {&SnmpArguments::authPasswordFile, "--auth-password-file"},
                                {&SnmpArguments::privProtocol, "-x"},
                                {&SnmpArguments::privPassword, "-X"},
                                {&SnmpArguments::privPasswordFile, "--priv-password-file"},
                                {&SnmpArguments::context, "-n"}}) {
        arguments = {};
        arguments.*option = "x";
        EXPECT_EQ(firstCredentialOption(arguments), name);
    }
}

} // namespace
} // namespace Host
