#include "host/CredentialsFile.h"

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

class CredentialsFiles : public testing::Test {
protected:
    TemporaryFolder folder;

    static std::vector<JsonValue> parse(const std::string& text) { return parseCredentials(text, "f", 161); }

    static std::string refusal(const std::string& text)
    {
        try {
            return "accepted: " + parse(text).front().dump();
        } catch (const UsageError& error) {
            return error.what();
        }
    }

    static std::string fileRefusal(const std::string& path)
    {
        try {
            readCredentialsFile(path, 161);
            return "accepted";
        } catch (const UsageError& error) {
            return error.what();
        }
    }
};

TEST_F(CredentialsFiles, HoldSeveralInTheirOrder)
{
    const auto profiles = parse("[old printers]\nversion = 1\ncommunity = one\n[new]\ncommunity = two\n[any]\n");
    ASSERT_EQ(profiles.size(), 3U);
    EXPECT_EQ(profiles[0].dump(), R"({"snmpVersion":1,"snmpPort":161,"communityRead":"one","communityWrite":""})");
    EXPECT_EQ(profiles[1].dump(), R"({"snmpVersion":2,"snmpPort":161,"communityRead":"two","communityWrite":""})");
    EXPECT_EQ(profiles[2].dump(), R"({"snmpVersion":2,"snmpPort":161,"communityRead":"public","communityWrite":""})");
}

TEST_F(CredentialsFiles, KnowEverythingOfVersion3)
{
    const auto profiles = parse("[a]\nversion = 3\nuser = admin\nlevel = authPriv\nauth-protocol = SHA\n"
                                "auth-password = \" authentic \"\npriv-protocol = AES-256\npriv-password = privately\n"
                                "context = floor 2\n");
    EXPECT_EQ(profiles.at(0).dump(),
              R"({"snmpVersion":3,"snmpPort":161,"usm":"admin","authProtocol":"SHA1","authPwd":" authentic ",)"
              R"("privacyProtocol":"AES256","privacyPwd":"privately","context":"floor 2"})");
}

TEST_F(CredentialsFiles, AUserMeansVersion3)
{
    EXPECT_EQ(parse("[a]\nuser = guest\n").at(0).at("snmpVersion"), 3);
    EXPECT_THAT(refusal("[a]\nuser = guest\nversion = 2c\n"),
                AllOf(HasSubstr("f: section \"a\": user is for SNMP version 3"), HasSubstr("version = 3")));
}

TEST_F(CredentialsFiles, RefusalsNameSectionAndKeyAndNoSecret)
{
    const std::string user = "[a]\n[second floor]\nuser = admin\n";
    EXPECT_THAT(refusal(user + "auth-protocol = SHA-999\n"),
                HasSubstr("f: section \"second floor\": auth-protocol: \"SHA-999\" is not known; MD5"));
    EXPECT_THAT(refusal(user + "auth-protocol = SHA\nauth-password = s3cret\n"),
                AllOf(HasSubstr("section \"second floor\": auth-password: a password has at least 8"),
                      Not(HasSubstr("s3cret"))));
    EXPECT_THAT(refusal(user + "auth-protocol = SHA\n"), HasSubstr("authNoPriv needs a password: auth-password"));
    EXPECT_THAT(refusal(user + "level = authPriv\n"), HasSubstr("authPriv needs auth-protocol"));
    EXPECT_THAT(refusal("[a]\nversion = 3\n"), HasSubstr("user"));
    EXPECT_THAT(refusal(user + "community = s3cret\n"),
                AllOf(HasSubstr("community is for SNMP versions 1 and 2c"), Not(HasSubstr("s3cret"))));
}

TEST_F(CredentialsFiles, UnknownKeysAreRefusedAndNotRepeated)
{
    EXPECT_THAT(refusal("[a]\ncommunity = x\ns3cret = x\n"),
                AllOf(HasSubstr("f:3:"), HasSubstr("version, community, user, level"), Not(HasSubstr("s3cret"))));
    EXPECT_THAT(refusal("[a]\ns3cret\n"), AllOf(HasSubstr("f:2:"), Not(HasSubstr("s3cret"))));
}

TEST_F(CredentialsFiles, HoldOneAtLeastAnd64AtMost)
{
    EXPECT_THAT(refusal("# none\n"), HasSubstr("no credentials"));
    std::string text;
    for (int i = 0; i < 64; ++i)
        text += "[" + std::to_string(i) + "]\n";
    EXPECT_EQ(parse(text).size(), 64U);
    EXPECT_THAT(refusal(text + "[more]\n"), HasSubstr("at most 64"));
}

TEST_F(CredentialsFiles, ThatOthersMayReadAreRefused)
{
    const std::string path = folder.write("credentials", "[a]\ncommunity = s3cret\n", std::filesystem::perms(0644));
    EXPECT_THAT(fileRefusal(path), AllOf(HasSubstr("--credentials"), HasSubstr(path),
                                         HasSubstr(TestSupport::mendingCommand), Not(HasSubstr("s3cret"))));
    TestSupport::setRights(path, std::filesystem::perms(0600));
    EXPECT_EQ(fileRefusal(path), "accepted");
}

TEST_F(CredentialsFiles, ThatAreNoneAreRefused)
{
    EXPECT_THAT(fileRefusal(folder.file("absent")), AllOf(HasSubstr("--credentials"), HasSubstr("cannot read")));
    EXPECT_THAT(fileRefusal(folder.write("binary", std::string("[a]\ncommunity = \0", 17))), HasSubstr("no text"));
    EXPECT_THAT(fileRefusal(folder.write("long", "[a]\n" + std::string(70000, '#'))), HasSubstr("64 KiB"));
    EXPECT_EQ(fileRefusal(folder.write("longest", "[a]\n" + std::string(65536 - 4, '#'))), "accepted");
}

} // namespace
} // namespace Host
