#include "Kep/Host/Outcomes.h"

#include "Kep/Mutex.h"
#include "Sessions.h"
#include "base/CurrentCall.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>

using namespace Ber;
using namespace Kep::Snmp;
using Kep::Host::Outcome;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr const char* unknownUserNames = ".1.3.6.1.6.3.15.1.1.3.0";
constexpr const char* unknownEngineIds = ".1.3.6.1.6.3.15.1.1.4.0";
constexpr const char* invalidMessages = ".1.3.6.1.6.3.11.2.1.2.0";

/// An observation that outlives its session.
struct Seen {
    Kep::Host::CallId call;
    std::uint32_t address;
    Outcome outcome;
    std::string problem;
};

class Observer : public Kep::Host::IOutcomeObserver {
public:
    void observe(const Kep::Host::Observation& observation) noexcept override
    {
        const Kep::MutexLock lock(mutex_);
        seen_.push_back({observation.call, observation.address, observation.outcome, std::string(observation.problem)});
    }

    std::vector<Seen> seen() const
    {
        const Kep::MutexLock lock(mutex_);
        return seen_;
    }

private:
    mutable Kep::Mutex mutex_;
    std::vector<Seen> seen_ KEP_GUARDED_BY(mutex_);
};

class Outcomes : public AgentTest {
protected:
    Outcomes() { Kep::Host::observeOutcomes(observer_); }
    ~Outcomes() override { Kep::Host::observeOutcomes(nullptr); }

    /// Ends the session; what was observed of it.
    Seen outcome()
    {
        session_.reset();
        const std::vector<Seen> all = observer_->seen();
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? Seen{} : all.back();
    }

    void agentIsSilent()
    {
        agentSays([](const Message&) { return Answers{}; });
    }

    void agentAnswersOnly(std::size_t first)
    {
        agentSays([=](const Message& request, std::size_t number) {
            return number <= first ? Answers{replyTo(request, {binding(sysDescr, octets("good"))}).encoded()}
                                   : Answers{};
        });
    }

    std::shared_ptr<Observer> observer_ = std::make_shared<Observer>();
};

/// A session of version 3 with an agent that tells its engine, whose later answers the test chooses.
class OutcomesOfUsers : public Outcomes {
protected:
    using Reports = std::function<std::optional<const char*>(std::size_t number)>;

    /// The agent reports what `reports` gives for the number of the request, or is silent.
    void agentReports(Reports reports)
    {
        agent_ =
            std::make_unique<ScriptedAgent>([reports = std::move(reports)](const Bytes& bytes, std::size_t number) {
                const auto counter = reports(number);
                return counter ? Answers{report(V3Message::decode(bytes), *counter).encoded()} : Answers{};
            });
    }

    static V3Message report(const V3Message& request, const char* counter)
    {
        V3Message message = request;
        message.flags = 0;
        message.engine = message.contextEngine = Bytes("\x80\0\x1F\x88\x04", 5) + "engine";
        message.boots = 7;
        message.time = 70000;
        message.pdu.tag = reportTag;
        message.pdu.bindings = {binding(counter, tlv(0x41, "\x01"))};
        return message;
    }

    void getAs(PrivacyProtocol privacy)
    {
        auto profile = std::make_shared<ProfileV3>();
        profile->port = agent_->port();
        profile->userName = "visitor";
        if (privacy != PrivacyProtocol::none)
            profile->authProtocol = static_cast<std::int32_t>(AuthProtocol::sha1);
        profile->privacyProtocol = static_cast<std::int32_t>(privacy);
        profile->authPassword = profile->privacyPassword = "perch-4711-secret";
        session_ = newSession(profile);
        problemOf([this] {
            session_->open("127.0.0.1");
            Kep::Variant value;
            session_->get(sysDescr, value);
        });
    }
};

} // namespace

TEST_F(Outcomes, AnAgentThatAnswersAllHasAnswered)
{
    agentGives(sysDescr, octets("good"));
    get();
    next(".1.3");
    EXPECT_THAT(observer_->seen(), IsEmpty()) << "told before the end";
    EXPECT_EQ(outcome().outcome, Outcome::Answered);
    EXPECT_EQ(observer_->seen().back().problem, "");
}

TEST_F(Outcomes, AnAgentThatHasNothingHasAnswered)
{
    for (const long version : {0L, 1L}) {
        talkVersion(version);
        agentFails(2);
        EXPECT_EQ(getText(), "");
        session_.reset();
        EXPECT_EQ(observer_->seen().back().outcome, Outcome::Answered) << version;
    }
}

TEST_F(Outcomes, NothingHeardIsSilence)
{
    agentIsSilent();
    problemOfGet();
    EXPECT_EQ(outcome().outcome, Outcome::Silent);
}

TEST_F(Outcomes, AClosedPortIsToldFromSilence)
{
    session_ = openSession(communityProfile(1, closedPort()));
    problemOfNext();
    const Seen seen = outcome();
    EXPECT_EQ(seen.outcome, Outcome::PortClosed);
    EXPECT_EQ(seen.problem, "the port is closed") << "address and port stand apart";
}

TEST_F(Outcomes, AnAgentThatFallsSilentHasFailed)
{
    agentAnswersOnly(1);
    get();
    problemOfGet();
    const Seen seen = outcome();
    EXPECT_EQ(seen.outcome, Outcome::Failed);
    EXPECT_EQ(seen.problem, "no answer in 2 tries of 100 ms");
}

TEST_F(Outcomes, AnAnswerAfterSilenceHasFailedToo)
{
    agentSays([](const Message& request, std::size_t number) {
        return number <= 2 ? Answers{} : Answers{replyTo(request, {binding(sysDescr, octets("good"))}).encoded()};
    });
    problemOfGet();
    EXPECT_EQ(getText(), "good");
    EXPECT_EQ(outcome().outcome, Outcome::Failed);
}

TEST_F(Outcomes, TheFirstProblemIsTold)
{
    agentSays([](const Message& request, std::size_t number) {
        Message reply = replyTo(request, request.pdu.bindings);
        reply.pdu.errorStatus = number == 1 ? 5 : 99;
        return Answers{reply.encoded()};
    });
    problemOfGet();
    problemOfGet();
    EXPECT_EQ(outcome().problem, "the agent answered with error status 5");
}

TEST_F(Outcomes, ErrorsNonsenseAndForeignAnswersHaveFailed)
{
    const std::vector<std::function<Bytes(const Message&)>> scripts = {
        [](const Message& request) {
            Message reply = replyTo(request, request.pdu.bindings);
            reply.pdu.errorStatus = 5;
            return reply.encoded();
        },
        [](const Message&) { return Bytes("nonsense"); },
        [](const Message& request) {
            Message reply = replyTo(request, {binding(sysDescr, octets("good"))});
            reply.community = "another";
            return reply.encoded();
        },
        [](const Message& request) { return replyTo(request, {binding(sysObjectId, octets("good"))}).encoded(); },
        [](const Message& request) { return replyTo(request, {}).encoded(); }};
    for (std::size_t i = 0; i < scripts.size(); ++i) {
        agentSays([&](const Message& request) { return Answers{scripts[i](request)}; });
        problemOfGet();
        session_.reset();
        EXPECT_EQ(observer_->seen().back().outcome, Outcome::Failed) << i;
        EXPECT_THAT(observer_->seen().back().problem, Not(IsEmpty())) << i;
        EXPECT_THAT(observer_->seen().back().problem, Not(HasSubstr(testCommunity))) << i;
    }
}

TEST_F(Outcomes, AnAgentThatGoesBackHasFailed)
{
    agentGives(".1.3.6.1.2.1.1.1.0", octets("good"));
    problemOfNext(".1.3.6.1.2.1.1.5.0");
    EXPECT_EQ(outcome().outcome, Outcome::Failed);
}

TEST_F(Outcomes, AnAgentThatGrantsNoAccessRefusesTheCredentials)
{
    agentFails(16);
    problemOfGet();
    EXPECT_EQ(outcome().outcome, Outcome::WrongCredentials);
}

TEST_F(Outcomes, AProfileThatCannotWorkHasFailed)
{
    const auto profile = std::make_shared<ProfileV3>();
    profile->port = 161;
    profile->authProtocol = static_cast<std::int32_t>(AuthProtocol::sha1);
    profile->authPassword = "short";
    session_ = newSession(profile);
    problemOf([this] { session_->open("127.0.0.1"); });
    const Seen seen = outcome();
    EXPECT_EQ(seen.outcome, Outcome::Failed);
    EXPECT_THAT(seen.problem, Not(HasSubstr("short")));
}

TEST_F(Outcomes, ASessionThatAskedNothingIsNotObserved)
{
    agentGives(sysDescr, octets("good"));
    session();
    newSession(communityProfile(1, agent_->port()));
    session_.reset();
    EXPECT_THAT(observer_->seen(), IsEmpty());
}

TEST_F(Outcomes, NameTheAddressAndTheCallOfTheOpening)
{
    agentGives(sysDescr, octets("good"));
    {
        const Kep::CurrentCall scope(4711);
        session();
    }
    get();
    const Seen seen = outcome();
    EXPECT_EQ(seen.address, 0x7F000001U);
    EXPECT_EQ(seen.call, 4711U);
}

TEST_F(Outcomes, GoToTheObserverOfTheMoment)
{
    agentGives(sysDescr, octets("good"));
    get();
    const auto another = std::make_shared<Observer>();
    Kep::Host::observeOutcomes(another);
    session_.reset();
    EXPECT_EQ(another->seen().size(), 1U);
    get();
    Kep::Host::observeOutcomes(nullptr);
    session_.reset();
    EXPECT_EQ(another->seen().size(), 1U);
    EXPECT_THAT(observer_->seen(), IsEmpty());
}

TEST_F(Outcomes, AreObservedOnManyThreadsWhileObserversChange)
{
    agentGives(sysDescr, octets("good"));
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([this] {
            for (int round = 0; round < 10; ++round) {
                const auto session = openSession(communityProfile(1, agent_->port()));
                Kep::Variant value;
                session->get(sysDescr, value);
            }
        });
    for (int i = 0; i < 100; ++i)
        Kep::Host::observeOutcomes(i % 2 == 0 ? nullptr : observer_);
    threads.clear();
    for (const Seen& seen : observer_->seen())
        EXPECT_EQ(seen.outcome, Outcome::Answered);
}

TEST_F(OutcomesOfUsers, ReportsOfUsersAndKeysAreWrongCredentials)
{
    agentReports([](std::size_t number) { return number == 1 ? unknownEngineIds : unknownUserNames; });
    getAs(PrivacyProtocol::none);
    const Seen seen = outcome();
    EXPECT_EQ(seen.outcome, Outcome::WrongCredentials);
    EXPECT_EQ(seen.problem, "the agent reports: unknown user name");
}

TEST_F(OutcomesOfUsers, OtherReportsHaveFailed)
{
    agentReports([](std::size_t number) { return number == 1 ? unknownEngineIds : invalidMessages; });
    getAs(PrivacyProtocol::none);
    EXPECT_EQ(outcome().outcome, Outcome::Failed);
}

TEST_F(OutcomesOfUsers, SilenceFromTheBeginningIsSilence)
{
    agentReports([](std::size_t) { return std::nullopt; });
    getAs(PrivacyProtocol::aes128);
    EXPECT_EQ(outcome().outcome, Outcome::Silent);
}

TEST_F(OutcomesOfUsers, AnAgentThatTellsItsEngineAndNothingElseHasFailed)
{
    agentReports(
        [](std::size_t number) { return number == 1 ? std::optional<const char*>(unknownEngineIds) : std::nullopt; });
    getAs(PrivacyProtocol::none);
    EXPECT_EQ(outcome().outcome, Outcome::Failed);
}

TEST_F(OutcomesOfUsers, ButWhereRequestsAreEncryptedTheKeyIsWrong)
{
    agentReports(
        [](std::size_t number) { return number == 1 ? std::optional<const char*>(unknownEngineIds) : std::nullopt; });
    getAs(PrivacyProtocol::aes128);
    const Seen seen = outcome();
    EXPECT_EQ(seen.outcome, Outcome::WrongCredentials);
    EXPECT_THAT(seen.problem, HasSubstr("wrong privacy password"));
    EXPECT_THAT(seen.problem, Not(HasSubstr("perch")));
}
