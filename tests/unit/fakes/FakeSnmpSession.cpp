// The framework's SNMP factory and engine, as far as the plug-in sees them, on top of `FakeSnmp`.
#include "Kep/Snmp/Exception.h"
#include "Kep/Snmp/Factory.h"
#include "fakes/FakeSnmp.h"
#include "fakes/Journal.h"

#include <utility>

namespace {

using Fakes::FakeSnmp;
using Fakes::Journal;
using Fakes::SnmpReply;

class FakeEngine final : public Kep::Snmp::V3Engine {};

SnmpReply orThrow(SnmpReply reply)
{
    if (reply.failure)
        std::rethrow_exception(reply.failure);
    return reply;
}

class FakeSession final : public Kep::Snmp::Session {
public:
    ~FakeSession() override { Journal::record("release session"); }

    void open(const std::string& address) override
    {
        Journal::record("open " + address);
        agent_ = FakeSnmp::current().find(address);
        if (!agent_)
            throw Kep::Snmp::Exception("nobody there");
        orThrow(agent_->reply("open"));
    }

    void getNext(const std::string& oid, std::string& nextOid, Kep::Variant& value) override
    {
        SnmpReply reply = request("getNext " + oid);
        nextOid = std::move(reply.nextOid);
        value = std::move(reply.value);
    }

    void get(const std::string& oid, Kep::Variant& value) override { value = request("get " + oid).value; }

private:
    SnmpReply request(const std::string& text)
    {
        Journal::record(text);
        if (!agent_)
            throw Kep::Snmp::Exception("not open");
        return orThrow(agent_->reply(text));
    }

    Fakes::FakeAgent* agent_ = nullptr;
};

} // namespace

namespace Kep::Snmp {

V3Engine::~V3Engine() = default;

std::shared_ptr<V3Engine> V3Engine::get()
{
    Journal::record("engine");
    FakeSnmp::current().throwIfNoEngine();
    return std::make_shared<FakeEngine>();
}

Factory::Factory(std::shared_ptr<V3Engine> engine) : engine_(std::move(engine)) {}

Factory::~Factory()
{
    Journal::record("release factory");
}

std::shared_ptr<Session> Factory::create(const std::shared_ptr<Profile>& profile)
{
    Journal::record("create");
    FakeSnmp::current().created(profile);
    return std::make_shared<FakeSession>();
}

} // namespace Kep::Snmp
