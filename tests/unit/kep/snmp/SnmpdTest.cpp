#include "tests/network/harness/Snmpd.h"
#include "Sessions.h"
#include "tests/network/AgentUsers.h"
#include "tests/network/harness/Loopback.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>

using namespace Kep::Snmp;
using namespace NetworkTests;
using namespace std::chrono_literals;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* name = "snmpd under test";

// Every combination that snmpd knows.
const std::vector<AgentUser> users = {
    agentUser("NoAuth", 1, 1),
    agentUser("Md5", 2, 1),
    agentUser("Sha1", 3, 1),
    agentUser("Md5Des", 2, 2),
    agentUser("Sha1Des", 3, 2),
    agentUser("Md5Aes128", 2, 4),
    agentUser("Sha1Aes128", 3, 4),
    agentUser("Md5Aes192", 2, 20),
    agentUser("Sha1Aes192", 3, 20),
    agentUser("Md5Aes256", 2, 21),
    agentUser("Sha1Aes256", 3, 21),
    agentUser("Md5Aes128Extended", 2, 22),
    agentUser("Sha1Aes128Extended", 3, 22),
    agentUser("Md5Aes192Extended", 2, 23),
    agentUser("Sha1Aes192Extended", 3, 23),
    agentUser("Md5Aes256Extended", 2, 24),
    agentUser("Sha1Aes256Extended", 3, 24),
};

const AgentUser& userCalled(const std::string& label)
{
    return *std::ranges::find_if(users, [&](const AgentUser& user) { return user.settings.name == label; });
}

std::unique_ptr<Snmpd> newAgent()
{
    return std::make_unique<Snmpd>(freeEndpoint(), OwnTables{name}, readersOf(users));
}

std::shared_ptr<Session> opened(const std::shared_ptr<Profile>& profile)
{
    return openSession(profile, ownAddress(1));
}

class SnmpdAgent : public testing::Test {
protected:
    static void SetUpTestSuite() { agent_ = newAgent(); }
    static void TearDownTestSuite() { agent_.reset(); }

    static std::uint16_t port() { return agent_->endpoint().port; }

    static std::string nameSeenBy(const std::shared_ptr<Profile>& profile) { return systemName(*opened(profile)); }

    static std::shared_ptr<ProfileV3> profileOf(const AgentUser& user) { return profileFor(user, port()); }
    static std::shared_ptr<ProfileV3> profileOf(const char* label) { return profileOf(userCalled(label)); }

    static inline std::unique_ptr<Snmpd> agent_;
    ChosenSettings settings_{5s, 2};
};

class SnmpdUsers : public SnmpdAgent, public testing::WithParamInterface<AgentUser> {};

INSTANTIATE_TEST_SUITE_P(All, SnmpdUsers, testing::ValuesIn(users),
                         [](const auto& user) { return user.param.settings.name; });

} // namespace

TEST_F(SnmpdAgent, AnswersVersions1And2c)
{
    EXPECT_EQ(nameSeenBy(communityProfile(0, port())), name);
    EXPECT_EQ(nameSeenBy(communityProfile(1, port())), name);
}

TEST_F(SnmpdAgent, IsWalkedAlikeInEveryVersion)
{
    const int objects = walkSystem(*opened(communityProfile(0, port())));
    EXPECT_GT(objects, 7);
    EXPECT_EQ(walkSystem(*opened(communityProfile(1, port()))), objects);
    EXPECT_EQ(walkSystem(*opened(profileOf("Sha1Aes128"))), objects);
}

TEST_F(SnmpdAgent, HasAnEndInEveryVersion)
{
    const std::string last = ".2.39";
    for (const std::shared_ptr<Profile>& profile : {communityProfile(0, port()), communityProfile(1, port()),
                                                    std::static_pointer_cast<Profile>(profileOf("Sha1Aes128"))}) {
        std::string next;
        Kep::Variant value("something");
        opened(profile)->getNext(last, next, value);
        EXPECT_EQ(next, last);
        EXPECT_TRUE(value.isNull());
    }
}

TEST_F(SnmpdAgent, LacksObjectsAlikeInEveryVersion)
{
    for (const std::shared_ptr<Profile>& profile : {communityProfile(0, port()), communityProfile(1, port()),
                                                    std::static_pointer_cast<Profile>(profileOf("Sha1Aes128"))}) {
        for (const char* missing : {".1.3.6.1.2.1.1.5.1", ".1.3.6.1.2.1.99.1"}) {
            Kep::Variant value("something");
            opened(profile)->get(missing, value);
            EXPECT_EQ(value.type(), 10);
            EXPECT_TRUE(value.empty());
        }
    }
}

TEST_F(SnmpdAgent, IsSilentForAWrongCommunity)
{
    const ChosenSettings brief(200ms, 0);
    EXPECT_THAT(problemOf([] { nameSeenBy(communityProfile(1, port(), "wrong")); }), HasSubstr("no answer"));
}

TEST_P(SnmpdUsers, Talk)
{
    const auto session = opened(profileOf(GetParam()));
    EXPECT_EQ(systemName(*session), name);
    EXPECT_GT(walkSystem(*session), 7);
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
    const AgentUser& user = userCalled("Sha1Aes128");
    const Snmpd front(freeEndpoint(),
                      OwnTables{.systemName = "front", .context = "behind", .behind = agent_->endpoint()},
                      readersOf({user}));
    const auto profile = profileFor(user, front.endpoint().port);
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
                right += nameSeenBy(profileOf(users[(thread + i) % users.size()])) == name ? 1 : 0;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 64 * 20);
}

TEST(SnmpdRestarts, AreFollowedByOpenSessions)
{
    const ChosenSettings settings(5s, 2);
    const auto agent = newAgent();
    const auto session = opened(profileFor(userCalled("Sha1Aes128"), agent->endpoint().port));
    for (int start = 0; start < 2; ++start) {
        agent->restart();
        EXPECT_EQ(systemName(*session), name);
    }
}

TEST(SnmpdRestarts, WithAnotherEngineEndOpenSessions)
{
    const ChosenSettings settings(5s, 2);
    const auto agent = newAgent();
    const auto session = opened(profileFor(userCalled("Sha1Aes128"), agent->endpoint().port));
    agent->replace();
    EXPECT_THAT(problemOf([&] { systemName(*session); }), HasSubstr("unknown engine ID"));
}
