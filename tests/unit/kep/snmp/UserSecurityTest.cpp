#include "Sessions.h"

#include "snmp/Library.h"

#include <gmock/gmock.h>

using namespace Ber;
using namespace Kep::Snmp;
using testing::HasSubstr;

namespace {

constexpr const char* unsupportedLevels = ".1.3.6.1.6.3.15.1.1.1.0";
constexpr const char* notInTimeWindows = ".1.3.6.1.6.3.15.1.1.2.0";
constexpr const char* unknownUserNames = ".1.3.6.1.6.3.15.1.1.3.0";
constexpr const char* unknownEngineIds = ".1.3.6.1.6.3.15.1.1.4.0";
constexpr const char* wrongDigests = ".1.3.6.1.6.3.15.1.1.5.0";
constexpr const char* decryptionErrors = ".1.3.6.1.6.3.15.1.1.6.0";
constexpr const char* unknownContexts = ".1.3.6.1.6.3.12.1.5.0";
constexpr const char* sysName = ".1.3.6.1.2.1.1.5.0";
constexpr unsigned char reportable = 4;

// An agent whose users need no password, so that its messages can be written by hand.
class UserSecurity : public testing::Test {
protected:
    using Script = std::function<std::vector<V3Message>(const V3Message& request, std::size_t number)>;

    // The agent tells its engine and then answers the requests, of which `number` 1 is the first after that.
    void agentSays(Script script)
    {
        agent_ =
            std::make_unique<ScriptedAgent>([this, script = std::move(script)](const Bytes& bytes, std::size_t number) {
                const V3Message request = V3Message::decode(bytes);
                if (number == 1)
                    return encoded({report(request, unknownEngineIds)});
                return encoded(script(request, number - 1));
            });
    }

    void agentSaysFirst(const std::function<V3Message(const V3Message& request)>& script)
    {
        agent_ = std::make_unique<ScriptedAgent>(
            [script](const Bytes& bytes, std::size_t) { return encoded({script(V3Message::decode(bytes))}); });
    }

    static std::vector<Answer> encoded(const std::vector<V3Message>& messages)
    {
        std::vector<Answer> answers;
        for (const V3Message& message : messages)
            answers.emplace_back(message.encoded());
        return answers;
    }

    V3Message report(const V3Message& request, const char* counter) const
    {
        V3Message message = request;
        message.flags = 0;
        message.engine = message.contextEngine = engine_;
        message.boots = boots_;
        message.time = time_;
        message.pdu.tag = reportTag;
        message.pdu.bindings = {binding(counter, tlv(0x41, "\x01"))};
        return message;
    }

    V3Message response(const V3Message& request, const std::string& text = "good") const
    {
        V3Message message = report(request, sysName);
        message.pdu.tag = responseTag;
        message.pdu.bindings = {binding(sysName, octets(text))};
        return message;
    }

    void open()
    {
        auto profile = std::make_shared<ProfileV3>();
        profile->port = agent_->port();
        profile->userName = "visitor";
        profile->context = context_;
        session_ = newSession(profile);
        session_->open("127.0.0.1");
    }

    std::string problemOfOpening()
    {
        return problemOf([this] { open(); });
    }

    std::string getText()
    {
        if (!session_)
            open();
        Kep::Variant value;
        session_->get(sysName, value);
        return std::string(value);
    }

    std::string problemOfGet()
    {
        return problemOf([this] { getText(); });
    }

    V3Message seen(std::size_t number) const { return V3Message::decode(agent_->requests().at(number)); }

    ChosenSettings settings_{std::chrono::milliseconds(100), 1};
    Bytes engine_ = Bytes("\x80\0\x1F\x88\x04", 5) + "engine";
    long boots_ = 7;
    long time_ = 70000;
    std::string context_;
    std::unique_ptr<ScriptedAgent> agent_;
    std::shared_ptr<Session> session_;
};

class RefusingAgents : public UserSecurity, public testing::WithParamInterface<std::pair<const char*, const char*>> {};

INSTANTIATE_TEST_SUITE_P(Reports, RefusingAgents,
                         testing::Values(std::pair(unsupportedLevels, "unsupported security level"),
                                         std::pair(unknownUserNames, "unknown user name"),
                                         std::pair(unknownEngineIds, "unknown engine ID"),
                                         std::pair(wrongDigests, "wrong digest"),
                                         std::pair(decryptionErrors, "decryption error"),
                                         std::pair(unknownContexts, "unknown or unavailable context"),
                                         std::pair(".1.3.6.1.6.3.11.2.1.1.0", "unknown security model"),
                                         std::pair(".1.3.6.1.6.3.11.2.1.2.0", "invalid message"),
                                         std::pair(".1.3.6.1.6.3.11.2.1.3.0", "unknown PDU handler"),
                                         std::pair(".1.3.6.1.4.1.1.1", "report of an unknown kind")));

} // namespace

TEST_F(UserSecurity, FindsTheEngineWithAnEmptyRequest)
{
    agentSays([this](const V3Message& request, std::size_t) { return std::vector{response(request)}; });
    open();
    ASSERT_EQ(agent_->requests().size(), 1U);
    const V3Message discovery = seen(0);
    EXPECT_EQ(discovery.flags, reportable);
    EXPECT_EQ(discovery.engine, "");
    EXPECT_EQ(discovery.user, "");
    EXPECT_EQ(discovery.boots, 0);
    EXPECT_EQ(discovery.time, 0);
    EXPECT_EQ(discovery.pdu.tag, getTag);
    EXPECT_TRUE(discovery.pdu.bindings.empty());
}

TEST_F(UserSecurity, TalksToTheEngineThatItFound)
{
    context_ = "tray";
    agentSays([this](const V3Message& request, std::size_t) { return std::vector{response(request)}; });
    EXPECT_EQ(getText(), "good");
    const V3Message request = seen(1);
    EXPECT_EQ(request.flags, reportable);
    EXPECT_EQ(request.engine, engine_);
    EXPECT_EQ(request.contextEngine, engine_);
    EXPECT_EQ(request.context, "tray");
    EXPECT_EQ(request.user, "visitor");
    EXPECT_EQ(request.boots, boots_);
    EXPECT_GE(request.time, time_);
    EXPECT_LT(request.time, time_ + 150);
    EXPECT_EQ(request.pdu.firstOid(), sysName);
}

TEST_F(UserSecurity, GetsNextToo)
{
    agentSays([this](const V3Message& request, std::size_t) { return std::vector{response(request)}; });
    open();
    std::string current = ".1.3.6.1.2.1.1.4.0";
    Kep::Variant value;
    session_->getNext(current, current, value);
    EXPECT_EQ(current, sysName);
    EXPECT_EQ(std::string(value), "good");
    EXPECT_EQ(seen(1).pdu.tag, getNextTag);
}

TEST_F(UserSecurity, MakesEveryTryAMessageOfItsOwn)
{
    agentSays([](const V3Message&, std::size_t) { return std::vector<V3Message>(); });
    EXPECT_THAT(problemOfGet(), HasSubstr("no answer in 2 tries"));
    ASSERT_EQ(agent_->requests().size(), 3U);
    EXPECT_NE(seen(1).messageId, seen(2).messageId);
    EXPECT_EQ(seen(1).pdu.requestId, seen(2).pdu.requestId);
}

TEST_F(UserSecurity, AsksForTheEngineAgainWhenTheFirstTryIsLost)
{
    agent_ = std::make_unique<ScriptedAgent>([this](const Bytes& bytes, std::size_t number) {
        const V3Message request = V3Message::decode(bytes);
        return number == 1 ? std::vector<Answer>() : encoded({report(request, unknownEngineIds)});
    });
    open();
    EXPECT_EQ(agent_->requests().size(), 2U);
}

TEST_F(UserSecurity, GivesUpOnAnAgentThatTellsNoEngine)
{
    agent_ = std::make_unique<ScriptedAgent>([](const Bytes&, std::size_t) { return std::vector<Answer>(); });
    EXPECT_THAT(problemOfOpening(), HasSubstr("no answer in 2 tries of 100 ms"));
    EXPECT_EQ(agent_->requests().size(), 2U);
}

TEST_F(UserSecurity, MayBeOpenedAgainAfterItFailed)
{
    agent_ = std::make_unique<ScriptedAgent>([this](const Bytes& bytes, std::size_t number) {
        return number <= 2 ? std::vector<Answer>() : encoded({report(V3Message::decode(bytes), unknownEngineIds)});
    });
    EXPECT_THAT(problemOfOpening(), HasSubstr("no answer"));
    session_->open("127.0.0.1");
}

TEST_F(UserSecurity, TakesTheEngineFromAnyReport)
{
    agentSaysFirst([this](const V3Message& request) { return report(request, unknownUserNames); });
    EXPECT_EQ(problemOfOpening(), "");
}

TEST_F(UserSecurity, TakesTheEngineFromAReportThatNamesAUser)
{
    agentSaysFirst([this](const V3Message& request) {
        V3Message message = report(request, unknownEngineIds);
        message.user = "somebody";
        return message;
    });
    EXPECT_EQ(problemOfOpening(), "");
}

TEST_F(UserSecurity, RefusesAnEngineWithoutId)
{
    engine_ = "";
    agentSaysFirst([this](const V3Message& request) { return report(request, unknownEngineIds); });
    EXPECT_THAT(problemOfOpening(), HasSubstr("engine ID has 0 bytes"));
}

TEST_F(UserSecurity, RefusesAnEngineWithAnOverlongId)
{
    for (const std::size_t size : {33U, 64U, 65U, 1000U}) {
        engine_ = Bytes(size, 'e');
        agentSaysFirst([this](const V3Message& request) {
            V3Message message = report(request, unknownEngineIds);
            message.contextEngine = "short";
            return message;
        });
        EXPECT_NE(problemOfOpening(), "") << size;
    }
}

TEST_F(UserSecurity, TakesTheLongestEngineId)
{
    engine_ = Bytes(32, 'e');
    agentSays([this](const V3Message& request, std::size_t) { return std::vector{response(request)}; });
    EXPECT_EQ(getText(), "good");
    EXPECT_EQ(seen(1).engine, engine_);
}

TEST_P(RefusingAgents, AreNamedAtOnce)
{
    const auto [counter, words] = GetParam();
    agentSays([this, counter = counter](const V3Message& request, std::size_t) {
        return std::vector{report(request, counter)};
    });
    EXPECT_THAT(problemOfGet(), HasSubstr(words));
    EXPECT_EQ(agent_->requests().size(), 2U);
}

TEST_F(UserSecurity, EndsAtOnceWhenTheAgentHasAnotherEngineNow)
{
    const ChosenSettings noOtherTry(std::chrono::seconds(20), 0);
    agentSays([this](const V3Message& request, std::size_t) {
        engine_ = "another engine";
        return std::vector{report(request, unknownEngineIds)};
    });
    EXPECT_THAT(problemOfGet(), HasSubstr("unknown engine ID"));
    EXPECT_EQ(agent_->requests().size(), 2U);
}

TEST_F(UserSecurity, IgnoresReportsFromAnotherEngineThatAreNotForTheMessage)
{
    const std::vector<std::function<void(V3Message&)>> changes = {
        [](V3Message& message) { message.messageId ^= 1; },
        [](V3Message& message) { message.flags = 1; },
        [](V3Message& message) { message.pdu.tag = responseTag; },
    };
    for (const auto& change : changes) {
        session_.reset();
        agentSays([&](const V3Message& request, std::size_t) {
            V3Message stray = report(request, unknownEngineIds);
            stray.engine = stray.contextEngine = "another engine";
            change(stray);
            return std::vector{stray, response(request)};
        });
        EXPECT_EQ(getText(), "good");
        EXPECT_EQ(agent_->requests().size(), 2U);
    }
}

TEST_F(UserSecurity, EndsWhenALaterTryMeetsAnotherEngine)
{
    agentSays([this](const V3Message& request, std::size_t number) {
        engine_ = "another engine";
        return number == 1 ? std::vector<V3Message>() : std::vector{report(request, unknownEngineIds)};
    });
    EXPECT_THAT(problemOfGet(), HasSubstr("unknown engine ID"));
    EXPECT_EQ(agent_->requests().size(), 3U);
}

TEST_F(UserSecurity, FollowsTheAgentsClockOnce)
{
    const ChosenSettings noOtherTry(std::chrono::seconds(20), 0);
    agentSays([this](const V3Message& request, std::size_t number) {
        boots_ = 9;
        time_ = 5;
        return std::vector{number == 1 ? report(request, notInTimeWindows) : response(request)};
    });
    EXPECT_EQ(getText(), "good");
    ASSERT_EQ(agent_->requests().size(), 3U);
    EXPECT_EQ(seen(1).boots, 7);
    EXPECT_EQ(seen(2).boots, 9);
    EXPECT_LT(seen(2).time, 150);
    EXPECT_EQ(getText(), "good");
    EXPECT_EQ(seen(3).boots, 9) << "the session remembers";
}

TEST_F(UserSecurity, GivesUpWhenTheClockIsWrongTwice)
{
    const ChosenSettings noOtherTry(std::chrono::seconds(20), 0);
    agentSays([this](const V3Message& request, std::size_t) { return std::vector{report(request, notInTimeWindows)}; });
    EXPECT_THAT(problemOfGet(), HasSubstr("not in time window"));
    EXPECT_EQ(agent_->requests().size(), 3U);
}

TEST_F(UserSecurity, IgnoresAnswersThatAreNotForTheRequest)
{
    const std::vector<std::function<void(V3Message&)>> changes = {
        [](V3Message& message) { message.messageId ^= 1; },
        [](V3Message& message) { message.pdu.requestId ^= 1; },
        [](V3Message& message) { message.user = "somebody"; },
        [](V3Message& message) { message.context = "elsewhere"; },
        [](V3Message& message) { message.contextEngine += "?"; },
        [](V3Message& message) { message.engine += "?"; },
        [](V3Message& message) { message.flags = 1; },
        [](V3Message& message) { message.pdu.tag = getTag; },
    };
    for (const auto& change : changes) {
        session_.reset();
        agentSays([&](const V3Message& request, std::size_t) {
            V3Message other = response(request, "not for us");
            change(other);
            return std::vector{other, response(request)};
        });
        EXPECT_EQ(getText(), "good");
        EXPECT_EQ(agent_->requests().size(), 2U);
    }
}

TEST_F(UserSecurity, DoesNotServeTheAgent)
{
    agentSays([this](const V3Message& request, std::size_t) {
        V3Message probe = response(request);
        probe.flags = reportable;
        probe.messageId = 1;
        probe.contextEngine = Bytes("\x80\0\0\0\x06", 5);
        probe.pdu.tag = getTag;
        probe.pdu.bindings = {binding(".1.3.6.1.6.3.10.2.1.1.0", null())};
        V3Message unknown = probe;
        unknown.user = "somebody";
        return std::vector{probe, unknown, response(request)};
    });
    EXPECT_EQ(getText(), "good");
    EXPECT_EQ(getText(), "good");
    EXPECT_EQ(agent_->requests().size(), 3U);
}

TEST_F(UserSecurity, LeavesNothingInTheLibrary)
{
    agentSays([this](const V3Message& request, std::size_t) {
        V3Message stray = response(request);
        stray.engine = "stray engine";
        return std::vector{stray, response(request)};
    });
    EXPECT_EQ(getText(), "good");
    const Kep::MutexLock lock(libraryMutex);
    EXPECT_EQ(usm_get_userList(), nullptr);
    for (const Bytes& engine : {engine_, Bytes("stray engine")})
        EXPECT_EQ(
            search_enginetime_list(reinterpret_cast<const u_char*>(engine.data()), static_cast<u_int>(engine.size())),
            nullptr);
}
