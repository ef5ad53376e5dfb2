#include "Snmpd.h"

#include "Sessions.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using namespace Kep::Snmp;
using namespace std::chrono_literals;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* sysName = ".1.3.6.1.2.1.1.5.0";
constexpr const char* system = ".1.3.6.1.2.1.1";
constexpr const char* name = "snmpd under test";

struct User {
    const char* label;
    std::int32_t auth;
    const char* authWord; // snmpd's word for it
    std::int32_t privacy;
    const char* privacyWord;
};

// Every combination that snmpd knows. The key extension with 3DES is what it calls -C; AES128 needs none.
constexpr User users[] = {
    {"NoAuth", 1, "", 1, ""},
    {"Md5", 2, "MD5", 1, ""},
    {"Sha1", 3, "SHA", 1, ""},
    {"Md5Des", 2, "MD5", 2, "DES"},
    {"Sha1Des", 3, "SHA", 2, "DES"},
    {"Md5Aes128", 2, "MD5", 4, "AES"},
    {"Sha1Aes128", 3, "SHA", 4, "AES"},
    {"Md5Aes192", 2, "MD5", 20, "AES-192"},
    {"Sha1Aes192", 3, "SHA", 20, "AES-192"},
    {"Md5Aes256", 2, "MD5", 21, "AES-256"},
    {"Sha1Aes256", 3, "SHA", 21, "AES-256"},
    {"Md5Aes128Extended", 2, "MD5", 22, "AES"},
    {"Sha1Aes128Extended", 3, "SHA", 22, "AES"},
    {"Md5Aes192Extended", 2, "MD5", 23, "AES-192-C"},
    {"Sha1Aes192Extended", 3, "SHA", 23, "AES-192-C"},
    {"Md5Aes256Extended", 2, "MD5", 24, "AES-256-C"},
    {"Sha1Aes256Extended", 3, "SHA", 24, "AES-256-C"},
};

void PrintTo(const User& user, std::ostream* stream)
{
    *stream << user.label;
}

std::string authPasswordOf(const User& user)
{
    return std::string("authenticates") + user.label;
}

std::string privacyPasswordOf(const User& user)
{
    return std::string("encrypts") + user.label;
}

std::string levelOf(const User& user)
{
    return user.privacy != 1 ? "priv" : user.auth != 1 ? "auth" : "noauth";
}

std::string configurationOf(const User& user)
{
    std::string line = std::string("createUser ") + user.label;
    if (user.auth != 1)
        line += std::string(" ") + user.authWord + " " + authPasswordOf(user);
    if (user.privacy != 1)
        line += std::string(" ") + user.privacyWord + " " + privacyPasswordOf(user);
    return line + "\nrouser " + user.label + " " + levelOf(user) + "\n";
}

std::string configuration()
{
    std::string text = "rocommunity " + std::string(testCommunity) + "\nsysName " + name + "\n";
    for (const User& user : users)
        text += configurationOf(user);
    return text;
}

std::shared_ptr<ProfileV3> profileOf(const User& user, std::uint16_t port)
{
    auto profile = std::make_shared<ProfileV3>();
    profile->port = port;
    profile->userName = user.label;
    profile->authProtocol = user.auth;
    profile->privacyProtocol = user.privacy;
    profile->authPassword = authPasswordOf(user);
    profile->privacyPassword = privacyPasswordOf(user);
    return profile;
}

const User& userCalled(const std::string& label)
{
    return *std::ranges::find_if(users, [&](const User& user) { return user.label == label; });
}

class SnmpdAgent : public testing::Test {
protected:
    static void SetUpTestSuite() { agent_ = std::make_unique<Snmpd>(configuration()); }
    static void TearDownTestSuite() { agent_.reset(); }

    static std::string nameSeenBy(const std::shared_ptr<Profile>& profile)
    {
        Kep::Variant value;
        openSession(profile)->get(sysName, value);
        return std::string(value);
    }

    static std::shared_ptr<ProfileV3> profileOf(const User& user) { return ::profileOf(user, agent_->port()); }
    static std::shared_ptr<ProfileV3> profileOf(const char* label) { return profileOf(userCalled(label)); }

    // Walks the system group and counts its objects.
    static int walk(Session& session)
    {
        std::string current = system;
        Kep::Variant value;
        int objects = 0;
        for (;; ++objects) {
            session.getNext(current, current, value);
            if (!current.starts_with(std::string(system) + "."))
                return objects;
        }
    }

    static inline std::unique_ptr<Snmpd> agent_;
    ChosenSettings settings_{5s, 2};
};

class SnmpdUsers : public SnmpdAgent, public testing::WithParamInterface<User> {};

INSTANTIATE_TEST_SUITE_P(All, SnmpdUsers, testing::ValuesIn(users),
                         [](const auto& user) { return std::string(user.param.label); });

} // namespace

TEST_F(SnmpdAgent, AnswersVersions1And2c)
{
    EXPECT_EQ(nameSeenBy(communityProfile(0, agent_->port())), name);
    EXPECT_EQ(nameSeenBy(communityProfile(1, agent_->port())), name);
}

TEST_F(SnmpdAgent, IsWalkedAlikeInEveryVersion)
{
    const int objects = walk(*openSession(communityProfile(0, agent_->port())));
    EXPECT_GT(objects, 7);
    EXPECT_EQ(walk(*openSession(communityProfile(1, agent_->port()))), objects);
    EXPECT_EQ(walk(*openSession(profileOf("Sha1Aes128"))), objects);
}

TEST_F(SnmpdAgent, HasAnEndInEveryVersion)
{
    const std::string last = ".2.39";
    for (const std::shared_ptr<Profile>& profile :
         {communityProfile(0, agent_->port()), communityProfile(1, agent_->port()),
          std::static_pointer_cast<Profile>(profileOf("Sha1Aes128"))}) {
        std::string next;
        Kep::Variant value("something");
        openSession(profile)->getNext(last, next, value);
        EXPECT_EQ(next, last);
        EXPECT_TRUE(value.isNull());
    }
}

TEST_F(SnmpdAgent, LacksObjectsAlikeInEveryVersion)
{
    for (const std::shared_ptr<Profile>& profile :
         {communityProfile(0, agent_->port()), communityProfile(1, agent_->port()),
          std::static_pointer_cast<Profile>(profileOf("Sha1Aes128"))}) {
        for (const char* missing : {".1.3.6.1.2.1.1.5.1", ".1.3.6.1.2.1.99.1"}) {
            Kep::Variant value("something");
            openSession(profile)->get(missing, value);
            EXPECT_EQ(value.type(), 10);
            EXPECT_TRUE(value.empty());
        }
    }
}

TEST_F(SnmpdAgent, IsSilentForAWrongCommunity)
{
    const ChosenSettings brief(200ms, 0);
    EXPECT_THAT(problemOf([] { nameSeenBy(communityProfile(1, agent_->port(), "wrong")); }), HasSubstr("no answer"));
}

TEST_P(SnmpdUsers, Talk)
{
    const auto session = openSession(profileOf(GetParam()));
    Kep::Variant value;
    session->get(sysName, value);
    EXPECT_EQ(std::string(value), name);
    EXPECT_GT(walk(*session), 7);
}

TEST_F(SnmpdAgent, DoesNotKnowEveryUser)
{
    for (const char* label : {"NoAuth", "Sha1", "Sha1Aes128"}) {
        auto profile = profileOf(label);
        profile->userName = "stranger";
        EXPECT_THAT(problemOf([&] { nameSeenBy(profile); }), HasSubstr("unknown user name"));
    }
}

TEST_F(SnmpdAgent, RefusesAWrongAuthenticationPassword)
{
    for (const char* label : {"Md5", "Sha1", "Sha1Aes128"}) {
        auto profile = profileOf(label);
        profile->authPassword = "not the password";
        const std::string problem = problemOf([&] { nameSeenBy(profile); });
        EXPECT_THAT(problem, HasSubstr("wrong digest"));
        EXPECT_THAT(problem, Not(HasSubstr("not the password")));
        EXPECT_EQ(nameSeenBy(profileOf(label)), name) << "the right one works afterwards";
    }
}

TEST_F(SnmpdAgent, RefusesAWrongAuthenticationProtocol)
{
    auto profile = profileOf("Sha1");
    profile->authProtocol = 2;
    EXPECT_THAT(problemOf([&] { nameSeenBy(profile); }), HasSubstr("wrong digest"));
}

TEST_F(SnmpdAgent, DoesNotUnderstandAWrongPrivacyPasswordOrProtocol)
{
    const ChosenSettings brief(300ms, 0);
    for (const char* label : {"Md5Des", "Sha1Aes128", "Sha1Aes256"}) {
        auto profile = profileOf(label);
        profile->privacyPassword = "not the password";
        const std::string problem = problemOf([&] { nameSeenBy(profile); });
        EXPECT_THAT(problem, AnyOf(HasSubstr("no answer"), HasSubstr("decryption error")));
        EXPECT_THAT(problem, Not(HasSubstr("not the password")));
        EXPECT_EQ(nameSeenBy(profileOf(label)), name) << "the right one works afterwards";
    }
    auto profile = profileOf("Sha1Aes192");
    profile->privacyProtocol = 23;
    EXPECT_NE(problemOf([&] { nameSeenBy(profile); }), "");
}

TEST_F(SnmpdAgent, RefusesALevelThatTheUserHasNotGot)
{
    auto profile = profileOf("Sha1");
    profile->privacyProtocol = 4;
    EXPECT_THAT(problemOf([&] { nameSeenBy(profile); }), HasSubstr("unsupported security level"));
}

TEST_F(SnmpdAgent, DoesNotKnowEveryContext)
{
    const ChosenSettings brief(300ms, 0);
    auto profile = profileOf("Sha1Aes128");
    profile->context = "nowhere";
    EXPECT_NE(problemOf([&] { nameSeenBy(profile); }), "");
}

TEST_F(SnmpdAgent, AnswersInTheContextAsked)
{
    const User& user = userCalled("Sha1Aes128");
    const Snmpd front("rocommunity " + std::string(testCommunity) + "\nsysName front\ncreateUser " + user.label +
                      " SHA " + authPasswordOf(user) + " AES " + privacyPasswordOf(user) + "\nrouser " + user.label +
                      " priv .1 *\nproxy -Cn behind -v 2c -c " + testCommunity +
                      " 127.0.0.1:" + std::to_string(agent_->port()) + " .1.3.6.1.2.1.1\n");
    const auto profile = ::profileOf(user, front.port());
    EXPECT_EQ(nameSeenBy(profile), "front");
    profile->context = "behind";
    EXPECT_EQ(nameSeenBy(profile), name);
}

TEST_F(SnmpdAgent, TalksToManyUsersAtOnce)
{
    const ChosenSettings patient(20s, 2);
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 64; ++thread)
        threads.emplace_back([&right, thread] {
            for (std::size_t i = 0; i < 20; ++i)
                right += nameSeenBy(profileOf(users[(thread + i) % std::size(users)])) == name ? 1 : 0;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 64 * 20);
}

TEST(SnmpdRestarts, AreFollowedByOpenSessions)
{
    const ChosenSettings settings(5s, 2);
    Snmpd agent(configuration());
    const auto session = openSession(profileOf(userCalled("Sha1Aes128"), agent.port()));
    for (int start = 0; start < 2; ++start) {
        agent.restart();
        Kep::Variant value;
        session->get(sysName, value);
        EXPECT_EQ(std::string(value), name);
    }
}

TEST(SnmpdRestarts, WithAnotherEngineEndOpenSessions)
{
    const ChosenSettings settings(5s, 2);
    Snmpd agent(configuration());
    const auto session = openSession(profileOf(userCalled("Sha1Aes128"), agent.port()));
    agent.replace();
    Kep::Variant value;
    EXPECT_THAT(problemOf([&] { session->get(sysName, value); }), HasSubstr("unknown engine ID"));
}
