#include "Sessions.h"

using namespace Kep::Snmp;

std::shared_ptr<Profile> communityProfile(long version, std::uint16_t port, const std::string& community)
{
    if (version == 0) {
        auto v1 = std::make_shared<ProfileV1>();
        v1->port = port;
        v1->readCommunity = community;
        return v1;
    }
    auto v2 = std::make_shared<ProfileV2>();
    v2->port = port;
    v2->readCommunity = community;
    return v2;
}

std::shared_ptr<Session> newSession(const std::shared_ptr<Profile>& profile)
{
    return Factory(V3Engine::get()).create(profile);
}

std::shared_ptr<Session> openSession(const std::shared_ptr<Profile>& profile, const std::string& address)
{
    auto session = newSession(profile);
    session->open(address);
    return session;
}

std::string problemOf(const std::function<void()>& action)
{
    try {
        action();
        return {};
    } catch (const Exception& exception) {
        return exception.what();
    }
}

void AgentTest::agentSays(std::function<Answers(const Message& request)> script)
{
    agentSays([script = std::move(script)](const Message& request, std::size_t) { return script(request); });
}

void AgentTest::agentSays(std::function<Answers(const Message& request, std::size_t number)> script)
{
    session_.reset();
    agent_ = std::make_unique<ScriptedAgent>([script = std::move(script)](const Bytes& request, std::size_t number) {
        return script(Message::decode(request), number);
    });
}

void AgentTest::agentGives(const std::string& oid, const Bytes& value)
{
    agentSays([=](const Message& request) { return Answers{replyTo(request, {Ber::binding(oid, value)}).encoded()}; });
}

void AgentTest::agentFails(long errorStatus)
{
    agentSays([=](const Message& request) {
        Message reply = replyTo(request, request.pdu.bindings);
        reply.pdu.errorStatus = errorStatus;
        reply.pdu.errorIndex = 1;
        return Answers{reply.encoded()};
    });
}

const std::shared_ptr<Session>& AgentTest::session()
{
    if (!session_)
        session_ = openSession(communityProfile(version_, agent_->port()));
    return session_;
}

Kep::Variant AgentTest::get(const std::string& oid)
{
    Kep::Variant value;
    session()->get(oid, value);
    return value;
}

AgentTest::Step AgentTest::next(const std::string& oid)
{
    Step step;
    session()->getNext(oid, step.oid, step.value);
    return step;
}

std::string AgentTest::problemOfGet(const std::string& oid)
{
    return problemOf([&] { get(oid); });
}

std::string AgentTest::problemOfNext(const std::string& oid)
{
    return problemOf([&] { next(oid); });
}

AgentTest::Message AgentTest::replyTo(const Message& request, std::vector<Bytes> bindings)
{
    Message reply = request;
    reply.pdu.tag = Ber::responseTag;
    reply.pdu.bindings = std::move(bindings);
    return reply;
}
