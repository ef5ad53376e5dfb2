#include "Sessions.h"

#include <gmock/gmock.h>

using namespace Kep::Snmp;
using testing::HasSubstr;
using testing::Not;

namespace {

// A profile that would work, at a port that never answers.
class UnusableProfiles : public testing::Test {
protected:
    UnusableProfiles()
    {
        profile_->port = silent_.port();
        profile_->userName = "user";
        profile_->authProtocol = 3;
        profile_->privacyProtocol = 4;
        profile_->authPassword = "authsecret";
        profile_->privacyPassword = "privsecret";
    }

    static std::string problemOfOpening(const std::shared_ptr<Profile>& profile)
    {
        const auto session = newSession(profile);
        return problemOf([&] { session->open("127.0.0.1"); });
    }

    std::string problem() const { return problemOfOpening(profile_); }

    ChosenSettings settings_{std::chrono::milliseconds(50), 0};
    SilentPort silent_;
    std::shared_ptr<ProfileV3> profile_ = std::make_shared<ProfileV3>();
};

} // namespace

TEST_F(UnusableProfiles, AreToldFromSilentAgents)
{
    EXPECT_THAT(problem(), HasSubstr("no answer"));
}

TEST_F(UnusableProfiles, HaveAShortAuthenticationPassword)
{
    profile_->authPassword = "seven77";
    EXPECT_THAT(problem(), HasSubstr("authentication password has under 8 bytes"));
    EXPECT_THAT(problem(), Not(HasSubstr("seven77")));
    profile_->authPassword = "";
    EXPECT_THAT(problem(), HasSubstr("authentication password has under 8 bytes"));
    profile_->authPassword = "eight888";
    EXPECT_THAT(problem(), HasSubstr("no answer"));
}

TEST_F(UnusableProfiles, HaveAShortPrivacyPassword)
{
    profile_->privacyPassword = "seven77";
    EXPECT_THAT(problem(), HasSubstr("privacy password has under 8 bytes"));
    EXPECT_THAT(problem(), Not(HasSubstr("seven77")));
}

TEST_F(UnusableProfiles, WantPrivacyWithoutAuthentication)
{
    profile_->authProtocol = 1;
    EXPECT_THAT(problem(), HasSubstr("privacy needs authentication"));
}

TEST_F(UnusableProfiles, NameACipherThatIsNotOffered)
{
    profile_->privacyProtocol = 3;
    EXPECT_THAT(problem(), HasSubstr("3DES-EDE is not offered"));
    profile_->privacyProtocol = 9;
    EXPECT_THAT(problem(), HasSubstr("IDEA is not offered"));
}

TEST_F(UnusableProfiles, NameUnknownCodes)
{
    for (const int code : {-1, 0, 5, 8, 10, 19, 25}) {
        profile_->privacyProtocol = code;
        EXPECT_THAT(problem(), HasSubstr("privacy by protocol " + std::to_string(code))) << code;
    }
    profile_->privacyProtocol = 1;
    for (const int code : {-1, 0, 4}) {
        profile_->authProtocol = code;
        EXPECT_THAT(problem(), HasSubstr("authentication by protocol " + std::to_string(code))) << code;
    }
}

TEST_F(UnusableProfiles, MayHaveAnyPasswordsThatTheyDoNotUse)
{
    profile_->privacyProtocol = 1;
    profile_->privacyPassword = "";
    EXPECT_THAT(problem(), HasSubstr("no answer"));
    profile_->authProtocol = 1;
    profile_->authPassword = "";
    EXPECT_THAT(problem(), HasSubstr("no answer"));
}

TEST_F(UnusableProfiles, NameNoUserOrOneThatFitsNoMessage)
{
    profile_->userName = "";
    EXPECT_THAT(problem(), HasSubstr("names no user"));
    profile_->userName = std::string(33, 'u');
    EXPECT_THAT(problem(), HasSubstr("user name has over 32 bytes"));
    profile_->userName = std::string("us\0er", 5);
    EXPECT_THAT(problem(), HasSubstr("NUL"));
    profile_->userName = std::string(32, 'u');
    EXPECT_THAT(problem(), HasSubstr("no answer"));
}

TEST_F(UnusableProfiles, NameAContextThatFitsNoMessage)
{
    profile_->context = std::string(256, 'c');
    EXPECT_THAT(problem(), HasSubstr("context name has over 255 bytes"));
    profile_->context = std::string("\0", 1);
    EXPECT_THAT(problem(), HasSubstr("NUL"));
}

TEST_F(UnusableProfiles, HaveACommunityThatFitsNoMessage)
{
    EXPECT_THAT(problemOfOpening(communityProfile(0, 161, std::string(256, 'c'))), HasSubstr("community"));
    EXPECT_THAT(problemOfOpening(communityProfile(1, 161, std::string(256, 'c'))), HasSubstr("community"));
    EXPECT_EQ(problemOfOpening(communityProfile(1, 161, std::string(255, 'c'))), "");
}

TEST_F(UnusableProfiles, HaveNoPort)
{
    EXPECT_THAT(problemOfOpening(communityProfile(1, 0)), HasSubstr("port is 0"));
}

TEST_F(UnusableProfiles, AreOfNoKnownVersion)
{
    struct Unknown : Profile {
        std::shared_ptr<Profile> clone() const override { return std::make_shared<Unknown>(*this); }
    };
    const auto unknown = std::make_shared<Unknown>();
    unknown->port = 161;
    EXPECT_THAT(problemOfOpening(unknown), HasSubstr("version"));
}

TEST(SessionOpening, WantsADottedQuad)
{
    for (const char* address : {"", "localhost", "127.0.0", "127.0.0.1.1", "::1", "127.0.0.256"}) {
        const auto session = newSession(communityProfile(1, 161));
        EXPECT_THAT(problemOf([&] { session->open(address); }), HasSubstr("is no IPv4 address")) << address;
    }
}

TEST(SessionOpening, ComesOnceAndBeforeTheRequests)
{
    const auto session = newSession(communityProfile(1, 161));
    Kep::Variant value;
    std::string next;
    EXPECT_THAT(problemOf([&] { session->get(".1.3.6", value); }), HasSubstr("not open"));
    EXPECT_THAT(problemOf([&] { session->getNext(".1.3.6", next, value); }), HasSubstr("not open"));
    session->open("127.0.0.1");
    EXPECT_THAT(problemOf([&] { session->open("127.0.0.1"); }), HasSubstr("open already"));
}
