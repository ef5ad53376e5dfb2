/// Sessions of every version and with every protocol of version 3, against agents of two makes: what works, and what a
/// session says when something is wrong. Each case has a user of its own, so that nothing that a library remembers of
/// one helps another. The results are recorded as properties of the cases, from which docs/snmp.md has its tables.
#include "tests/network/MatrixAgents.h"
#include "tests/network/harness/Program.h"
#include "tests/unit/kep/snmp/Sessions.h"

#include "snmp/Wire.h"

#include <gmock/gmock.h>

#include <functional>

using namespace Kep::Snmp;
using namespace NetworkTests;
using namespace std::chrono_literals;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* wrongPassword = "not the password";

/// The names that a request has for the codes.
const std::map<std::int32_t, std::string> authNames = {{1, "no authentication"}, {2, "MD5"}, {3, "SHA1"}};
const std::map<std::int32_t, std::string> privacyNames = {{1, "no privacy"},
                                                          {2, "DES"},
                                                          {3, "DES3EDE"},
                                                          {4, "AES128"},
                                                          {9, "IDEA"},
                                                          {20, "AES192"},
                                                          {21, "AES256"},
                                                          {22, "AES128W3DESKEYEXT"},
                                                          {23, "AES192W3DESKEYEXT"},
                                                          {24, "AES256W3DESKEYEXT"}};

using Edit = std::function<void(ProfileV3&)>;

/// A way to be wrong: what a session is told that does not fit the user.
struct Mistake {
    std::string row;
    std::int32_t auth;
    std::int32_t privacy;
    Edit edit;
    std::vector<std::string> said; ///< parts of what the session may say
};

void wrongAuthPassword(ProfileV3& profile)
{
    profile.authPassword = wrongPassword;
}

void wrongPrivacyPassword(ProfileV3& profile)
{
    profile.privacyPassword = wrongPassword;
}

Edit privacy(std::int32_t code)
{
    return [code](ProfileV3& profile) { profile.privacyProtocol = code; };
}

Edit auth(std::int32_t code)
{
    return [code](ProfileV3& profile) { profile.authProtocol = code; };
}

void strange(ProfileV3& profile)
{
    profile.userName = "stranger";
}

const std::vector<std::string> notUnderstood = {"no answer", "decryption error", "wrong digest"};

const std::vector<Mistake> mistakes = {
    {"unknown user, without authentication", 1, 1, strange, {"unknown user name"}},
    {"unknown user, with authentication", 3, 1, strange, {"unknown user name"}},
    {"unknown user, with privacy", 3, 4, strange, {"unknown user name"}},
    {"wrong authentication password, MD5", 2, 1, wrongAuthPassword, {"wrong digest"}},
    {"wrong authentication password, SHA1", 3, 1, wrongAuthPassword, {"wrong digest"}},
    {"wrong authentication password, SHA1 and AES128", 3, 4, wrongAuthPassword, {"wrong digest"}},
    {"MD5 for a user of SHA1", 3, 1, auth(2), {"wrong digest"}},
    {"SHA1 for a user of MD5", 2, 1, auth(3), {"wrong digest"}},
    {"wrong privacy password, DES", 2, 2, wrongPrivacyPassword, notUnderstood},
    {"wrong privacy password, AES128", 3, 4, wrongPrivacyPassword, notUnderstood},
    {"wrong privacy password, AES192", 3, 20, wrongPrivacyPassword, notUnderstood},
    {"wrong privacy password, AES256", 3, 21, wrongPrivacyPassword, notUnderstood},
    {"wrong privacy password, AES128W3DESKEYEXT", 3, 22, wrongPrivacyPassword, notUnderstood},
    {"wrong privacy password, AES192W3DESKEYEXT", 3, 23, wrongPrivacyPassword, notUnderstood},
    {"wrong privacy password, AES256W3DESKEYEXT", 3, 24, wrongPrivacyPassword, notUnderstood},
    {"AES128 for a user of DES", 3, 2, privacy(4), notUnderstood},
    {"DES for a user of AES128", 3, 4, privacy(2), notUnderstood},
    {"AES256W3DESKEYEXT for a user of AES256", 3, 21, privacy(24), notUnderstood},
    {"privacy for a user without", 3, 1, privacy(4), {"unsupported security level"}},
    {"no privacy for a user with it", 3, 4, privacy(1), {"error status 16", "unsupported security level"}},
    {"unknown context",
     3,
     4,
     [](ProfileV3& profile) { profile.context = "nowhere"; },
     {"unknown or unavailable context", "no answer", "error status"}},
    {"authentication password of 7 bytes",
     3,
     1,
     [](ProfileV3& profile) { profile.authPassword = "seven77"; },
     {"authentication password has under 8 bytes"}},
    {"privacy password of 7 bytes",
     3,
     4,
     [](ProfileV3& profile) { profile.privacyPassword = "seven77"; },
     {"privacy password has under 8 bytes"}},
    {"privacy without authentication", 3, 4, auth(1), {"privacy needs authentication"}},
};

struct Combination {
    std::int32_t auth;
    std::int32_t privacy;
};

std::vector<Combination> combinations()
{
    std::vector<Combination> all = {{1, 1}};
    for (const std::int32_t hash : {2, 3}) {
        for (const auto& [cipher, name] : privacyNames) {
            all.push_back({hash, cipher});
        }
    }
    return all;
}

AgentUser userOf(const Combination& combination)
{
    return agentUser("U" + std::to_string(combination.auth) + "x" + std::to_string(combination.privacy),
                     combination.auth, combination.privacy);
}

AgentUser userOf(const Mistake& mistake)
{
    const auto number = &mistake - mistakes.data();
    return agentUser("Mistaken" + std::to_string(number), mistake.auth, mistake.privacy);
}

const Combination eventful{3, 4};

AgentUser userOfEvent(const std::string& name)
{
    return agentUser(name, eventful.auth, eventful.privacy);
}

bool agentsHave(const AgentUser& user)
{
    return user.privacy == 1 || !user.settings.privacyProtocol.empty();
}

std::vector<AgentUser> everyUser()
{
    std::vector<AgentUser> users = {userOfEvent("Contextual"), userOfEvent("Late"), userOfEvent("Rebooted"),
                                    userOfEvent("Replaced"), userOfEvent("Misled")};
    for (const Combination& combination : combinations()) {
        users.push_back(userOf(combination));
    }
    for (const Mistake& mistake : mistakes) {
        users.push_back(userOf(mistake));
    }
    std::erase_if(users, [](const AgentUser& user) { return !agentsHave(user); });
    return users;
}

/// The agents, started once for all cases.
class Agents : public testing::Environment {
public:
    void SetUp() override
    {
        agents_.push_back(matrixSnmpd(everyUser()));
        agents_.push_back(matrixSimulator(everyUser()));
    }
    void TearDown() override { agents_.clear(); }

    static MatrixAgent& at(std::size_t number) { return *agents_.at(number); }

private:
    static inline std::vector<std::unique_ptr<MatrixAgent>> agents_;
};

[[maybe_unused]] const testing::Environment* const agents = testing::AddGlobalTestEnvironment(new Agents);

class Matrix : public testing::Test {
protected:
    explicit Matrix(std::size_t agent) : agent_(Agents::at(agent)) {}

    std::shared_ptr<Session> opened(const std::shared_ptr<Profile>& profile) const
    {
        return openSession(profile, agent_.endpoint().address);
    }

    void expectWorking(const std::shared_ptr<Profile>& profile) const
    {
        const auto session = opened(profile);
        EXPECT_EQ(systemName(*session), MatrixAgent::name);
        EXPECT_GE(walkSystem(*session), 6);
    }

    std::string problemWith(const std::shared_ptr<Profile>& profile) const
    {
        return problemOf([&] { systemName(*opened(profile)); });
    }

    /// For the document. What tells one run from another is left out of `result`.
    void record(const std::string& table, const std::string& row, std::string result) const
    {
        const std::string peer = agent_.endpoint().text() + ": ";
        if (result.starts_with(peer)) {
            result.erase(0, peer.size());
        }
        result = result.substr(0, result.find(" in 1 try"));
        RecordProperty("table", table);
        RecordProperty("row", row);
        RecordProperty("agent", agent_.make());
        RecordProperty("result", result);
    }

    /// Whether the session says what it should. The simulator is silent where others report, or signs its reports with
    /// keys that only a right password gives: there, hearing nothing readable is as good.
    bool isAmong(const std::string& said, std::vector<std::string> expected) const
    {
        if (agent_.make() == "snmpsimd") {
            expected.insert(expected.end(), {"no answer", "no readable answer"});
        }
        return std::ranges::any_of(expected, [&](const std::string& part) { return said.find(part) != said.npos; });
    }

    void recordWorking(const std::string& table, const std::string& row) const
    {
        record(table, row, HasFailure() ? "fails" : "works");
    }

    MatrixAgent& agent_;
    ChosenSettings settings_{5s, 2};
};

/// For sessions that no answer will reach.
class Brief {
    ChosenSettings settings_{500ms, 0};
};

template <class Case>
class MatrixOf : public Matrix, public testing::WithParamInterface<std::tuple<std::size_t, Case>> {
protected:
    MatrixOf() : Matrix(std::get<0>(MatrixOf::GetParam())) {}
    const Case& its() const { return std::get<1>(MatrixOf::GetParam()); }
};

constexpr const char* protocols = "protocols";
constexpr const char* wrong = "mistakes";
constexpr const char* events = "events";
const auto everyAgent = testing::Range<std::size_t>(0, 2);

class Communities : public MatrixOf<long> {};
class Protocols : public MatrixOf<Combination> {};
class Mistakes : public MatrixOf<std::size_t> {};
class Events : public MatrixOf<int> {};

INSTANTIATE_TEST_SUITE_P(Agents, Communities, testing::Combine(everyAgent, testing::Values(0L, 1L)));
INSTANTIATE_TEST_SUITE_P(Agents, Protocols, testing::Combine(everyAgent, testing::ValuesIn(combinations())));
INSTANTIATE_TEST_SUITE_P(Agents, Mistakes,
                         testing::Combine(everyAgent, testing::Range<std::size_t>(0, mistakes.size())));
INSTANTIATE_TEST_SUITE_P(Agents, Events, testing::Combine(everyAgent, testing::Values(0)));

TEST_P(Communities, Work)
{
    expectWorking(communityProfile(its(), agent_.endpoint().port, agent_.community()));
    recordWorking(protocols, its() == 0 ? "version 1" : "version 2c");
}

TEST_P(Communities, ThatAreWrongMeetSilence)
{
    const Brief brief;
    const std::string said = problemWith(communityProfile(its(), agent_.endpoint().port, "wrong"));
    EXPECT_THAT(said, HasSubstr("no answer"));
    record(wrong, its() == 0 ? "wrong community, version 1" : "wrong community, version 2c", said);
}

TEST_P(Protocols, WorkOrAreNotOffered)
{
    const AgentUser user = userOf(its());
    const auto profile = profileAt(agent_, user);
    const std::string row = "version 3, " + authNames.at(its().auth) + ", " + privacyNames.at(its().privacy);
    if (agentsHave(user)) {
        expectWorking(profile);
        recordWorking(protocols, row);
        return;
    }
    const std::string said = problemWith(profile);
    EXPECT_THAT(said, HasSubstr("is not offered"));
    record(protocols, row, said);
}

TEST_P(Mistakes, AreNamed)
{
    const Mistake& mistake = mistakes.at(its());
    const AgentUser user = userOf(mistake);
    const auto profile = profileAt(agent_, user);
    mistake.edit(*profile);
    std::string said;
    {
        const Brief brief;
        said = problemWith(profile);
    }
    EXPECT_TRUE(isAmong(said, mistake.said)) << said;
    for (const std::string& secret : {user.settings.authPassword, user.settings.privacyPassword,
                                      std::string(wrongPassword), std::string("seven77")}) {
        EXPECT_THAT(said, Not(HasSubstr(secret)));
    }
    record(wrong, mistake.row, said);
    expectWorking(profileAt(agent_, user)); // what was wrong leaves no trace
}

TEST_P(Events, OfAnotherContextReachIt)
{
    const auto profile = profileAt(agent_, userOfEvent("Contextual"));
    profile->context = MatrixAgent::secondContext;
    EXPECT_EQ(systemName(*opened(profile)), MatrixAgent::secondName);
    recordWorking(events, "another context");
}

TEST_P(Events, OfARebootAreFollowed)
{
    const auto session = opened(profileAt(agent_, userOfEvent("Rebooted")));
    EXPECT_EQ(systemName(*session), MatrixAgent::name);
    for (int reboot = 0; reboot < 2; ++reboot) {
        agent_.restart();
        EXPECT_EQ(systemName(*session), MatrixAgent::name);
    }
    recordWorking(events, "reboot in mid-run, the same engine");
}

TEST_P(Events, OfARebootAsAnotherEngineEndTheSession)
{
    const auto profile = profileAt(agent_, userOfEvent("Replaced"));
    const auto session = opened(profile);
    EXPECT_EQ(systemName(*session), MatrixAgent::name);
    agent_.replace();
    std::string said;
    {
        const Brief brief;
        said = problemOf([&] { systemName(*session); });
    }
    EXPECT_TRUE(isAmong(said, {"unknown engine ID"})) << said;
    expectWorking(profile);
    record(events, "reboot in mid-run, another engine", said);
}

/// Stands between a session and its agent and changes what the agent says first: its engine.
class Misleading {
public:
    using Change = std::function<void(Ber::V3Message&)>;

    Misleading(const Endpoint& agent, Change change) : wire_(agent.address, agent.port), change_(std::move(change)) {}

    std::uint16_t port() const { return relay_.port(); }
    std::size_t requests() const { return relay_.requests().size(); }

private:
    std::vector<Answer> relay(const Ber::Bytes& request, std::size_t number)
    {
        std::vector<Answer> answers;
        wire_.send({reinterpret_cast<const unsigned char*>(request.data()), request.size()});
        wire_.receive(Wire::Clock::now() + 2s, [&](std::span<const unsigned char> datagram) {
            const Ber::Bytes bytes(datagram.begin(), datagram.end());
            answers.emplace_back(number == 1 ? changed(bytes) : bytes);
        });
        return answers;
    }

    Ber::Bytes changed(const Ber::Bytes& bytes) const
    {
        Ber::V3Message message = Ber::V3Message::decode(bytes);
        change_(message);
        return message.encoded();
    }

    Wire wire_;
    const Change change_;
    ScriptedAgent relay_{[this](const Ber::Bytes& request, std::size_t number) { return relay(request, number); }};
};

TEST_P(Events, OfAClockOutOfTheWindowAreFollowed)
{
    const Misleading misleading(agent_.endpoint(), [](Ber::V3Message& report) { report.boots += 7; });
    auto profile = profileAt(agent_, userOfEvent("Late"));
    profile->port = misleading.port();
    const auto session = openSession(profile);
    EXPECT_EQ(systemName(*session), MatrixAgent::name);
    EXPECT_EQ(misleading.requests(), 3U) << "discovery, the request out of the window, and the right one";
    recordWorking(events, "clock out of the window");
}

TEST_P(Events, OfAnEngineThatTheAgentIsNotEndTheSession)
{
    const Misleading misleading(agent_.endpoint(), [](Ber::V3Message& report) { report.engine.back() ^= 1; });
    auto profile = profileAt(agent_, userOfEvent("Misled"));
    profile->port = misleading.port();
    const Brief brief;
    const std::string said = problemOf([&] { systemName(*openSession(profile)); });
    EXPECT_TRUE(isAmong(said, {"unknown engine ID"})) << said;
    EXPECT_EQ(misleading.requests(), 2U);
    record(events, "an engine that the agent is not", said.substr(said.find(": ") + 2));
}

TEST(Discover, RefusesTheCiphersThatTheEngineLacks)
{
    for (const char* cipher : {"DES3EDE", "3DES", "IDEA"}) {
        const Finished result =
            run({.words = {builtProgram("printer-discovery"), "discover", "127.0.0.1", "-v", "3", "-u", "user", "-a",
                           "SHA", "-A", "authsecret", "-x", cipher, "-X", "privsecret"}},
                30s);
        EXPECT_EQ(result.status, 2) << cipher;
        EXPECT_THAT(result.errors, HasSubstr(std::string("-x: \"") + cipher + "\"")) << cipher;
        EXPECT_THAT(result.errors, HasSubstr("AES-256"));
    }
}

} // namespace
