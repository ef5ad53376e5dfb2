#include "snmp/AgentSession.h"

#include "Kep/Snmp/Exception.h"
#include "snmp/CommunitySecurity.h"
#include "snmp/EngineDiscovery.h"
#include "snmp/Exchange.h"
#include "snmp/ProfileCheck.h"
#include "snmp/UsmSecurity.h"

namespace Kep::Snmp {

namespace {

UsmKeys keysOf(const ProfileV3& profile, KeyCache& cache)
{
    const AuthProtocol auth{profile.authProtocol};
    UsmKeys keys;
    if (auth != AuthProtocol::none)
        keys.authentication = cache.get(auth, profile.authPassword);
    if (PrivacyProtocol{profile.privacyProtocol} != PrivacyProtocol::none)
        keys.privacy = cache.get(auth, profile.privacyPassword);
    return keys;
}

std::unique_ptr<Security> discover(Wire& wire, const ProfileV3& profile, KeyCache& cache)
{
    EngineDiscovery discovery;
    takeReply(exchange(wire, discovery, Question{}));
    return std::make_unique<UsmSecurity>(profile, keysOf(profile, cache), discovery.engine(), discovery.clock());
}

// Requires a checked profile.
std::unique_ptr<Security> secure(Wire& wire, const Profile& profile, KeyCache& cache)
{
    if (const auto* const v1 = dynamic_cast<const ProfileV1*>(&profile))
        return std::make_unique<CommunitySecurity>(SNMP_VERSION_1, v1->readCommunity);
    if (const auto* const v2 = dynamic_cast<const ProfileV2*>(&profile))
        return std::make_unique<CommunitySecurity>(SNMP_VERSION_2c, v2->readCommunity);
    return discover(wire, dynamic_cast<const ProfileV3&>(profile), cache);
}

// Charges a session's budget for one request and the time until it is destroyed, less that which the wire held it up.
class BudgetedRequest {
public:
    BudgetedRequest(SessionBudget& budget, const Wire& wire) : budget_(budget), wire_(wire) { budget_.charge(); }
    ~BudgetedRequest() { budget_.spend(Wire::Clock::now() - start_ - (wire_.held() - heldBefore_)); }
    BudgetedRequest(const BudgetedRequest&) = delete;
    BudgetedRequest& operator=(const BudgetedRequest&) = delete;

    Wire::Clock::time_point limit() const { return start_ + budget_.left(); }

private:
    SessionBudget& budget_;
    const Wire& wire_;
    const Wire::Clock::time_point start_ = Wire::Clock::now();
    const Wire::Clock::duration heldBefore_ = wire_.held();
};

} // namespace

AgentSession::AgentSession(std::shared_ptr<Engine> engine, std::shared_ptr<const Profile> profile)
    : engine_(std::move(engine)), profile_(std::move(profile))
{}

void AgentSession::open(const std::string& address)
{
    if (wire_)
        throw Exception("the session is open already");
    record_.begin(address);
    record_.watch([&] {
        checkProfile(*profile_);
        auto wire = std::make_unique<Wire>(address, profile_->port);
        security_ = secure(*wire, *profile_, engine_->keys());
        wire_ = std::move(wire);
    });
    if (const auto* const v3 = dynamic_cast<const ProfileV3*>(profile_.get()))
        record_.foundEngine(PrivacyProtocol{v3->privacyProtocol} != PrivacyProtocol::none);
}

void AgentSession::getNext(const std::string& oid, std::string& nextOid, Variant& value)
{
    const auto asked = Oid::parse(oid);
    if (!asked)
        throw Exception("\"" + oid + "\" is no object identifier");
    requireOpen();
    Reply reply = take(askNext(*asked));
    if (!reply.hasValue) {
        nextOid = oid;
        value = Variant();
        return;
    }
    nextOid = reply.oid.text();
    value = std::move(reply.value);
}

void AgentSession::get(const std::string& oid, Variant& value)
{
    const auto asked = Oid::parse(oid);
    if (!asked) {
        value = Variant("");
        return;
    }
    requireOpen();
    Reply reply = take(askFor(*asked));
    value = reply.hasValue ? std::move(reply.value) : Variant("");
}

Answer AgentSession::askNext(const Oid& oid)
{
    return record_.watch([&] {
        const BudgetedRequest request(budget_, *wire_);
        Answer answer = ask({Question::Kind::getNext, oid}, request.limit());
        if (const auto* const reply = std::get_if<Reply>(&answer); reply != nullptr && reply->hasValue)
            if (reply->oid < oid)
                throw failure("the agent went back: " + reply->oid.text() + " does not follow " + oid.text());
        return answer;
    });
}

Answer AgentSession::askFor(const Oid& oid)
{
    return record_.watch([&] {
        Answer answer = ask({Question::Kind::get, oid});
        if (const auto* const reply = std::get_if<Reply>(&answer); reply != nullptr && reply->bindings != 0)
            if (reply->oid != oid)
                throw failure("the agent answered for " + reply->oid.text() + ", asked for " + oid.text());
        return answer;
    });
}

// What was not answered is noted without being thrown and caught, which would cost a sweep more than all else. The few
// frames that the failure passes then count, too.
Reply AgentSession::take(Answer&& answer)
{
    if (const auto* const silence = std::get_if<Failure>(&answer))
        record_.failed(*silence);
    else
        record_.answered();
    return takeReply(std::move(answer));
}

// An agent that has nothing (RFC 1157, section 4.1.2) gives a reply without bindings; otherwise there is exactly one.
Answer AgentSession::ask(const Question& question, Wire::Clock::time_point limit) const
{
    Answer answer = exchange(*wire_, *security_, question, limit);
    if (const auto* const reply = std::get_if<Reply>(&answer)) {
        if (reply->errorStatus == SNMP_ERR_NOSUCHNAME)
            return Reply{};
        check(*reply);
    }
    return answer;
}

void AgentSession::check(const Reply& reply) const
{
    if (reply.errorStatus == SNMP_ERR_AUTHORIZATIONERROR)
        throw failure("the agent answered with error status 16 (access not authorised)",
                      Host::Outcome::WrongCredentials);
    if (reply.errorStatus != SNMP_ERR_NOERROR)
        throw failure("the agent answered with error status " + std::to_string(reply.errorStatus));
    if (reply.bindings != 1)
        throw failure("the agent answered with " + std::to_string(reply.bindings) + " variable bindings, expected 1");
}

void AgentSession::requireOpen() const
{
    if (!wire_)
        throw Exception("the session is not open");
}

Failure AgentSession::failure(const std::string& problem, Host::Outcome outcome) const
{
    return {outcome, wire_->peer(), problem};
}

} // namespace Kep::Snmp
