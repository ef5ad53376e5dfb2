#include "fakes/FakeSnmp.h"

#include "Kep/Snmp/Exception.h"
#include "engine/IdentificationSettings.h"

#include <algorithm>
#include <stdexcept>

namespace Fakes {
namespace {

FakeSnmp* theSnmp = nullptr;

} // namespace

SnmpReply answer(const std::string& text)
{
    return {{}, Kep::Variant(text), nullptr};
}

SnmpReply answer(Kep::Variant value)
{
    return {{}, std::move(value), nullptr};
}

SnmpReply row(const std::string& oid, const std::string& text)
{
    return {oid, Kep::Variant(text), nullptr};
}

SnmpReply row(const std::string& oid, Kep::Variant value)
{
    return {oid, std::move(value), nullptr};
}

SnmpReply noAnswer()
{
    return throwing(Kep::Snmp::Exception("no answer"));
}

void FakeAgent::onOpen(std::vector<SnmpReply> replies)
{
    script("open", std::move(replies));
}

void FakeAgent::onGetNext(const std::string& oid, std::vector<SnmpReply> replies)
{
    script("getNext " + oid, std::move(replies));
}

void FakeAgent::onGet(const std::string& oid, std::vector<SnmpReply> replies)
{
    script("get " + oid, std::move(replies));
}

void FakeAgent::isPrinter()
{
    const auto& settings = PrinterDiscoveryPlugin::identificationSettings();
    onGetNext(settings.oidDeviceType, {row(settings.oidDeviceType + ".1", settings.oidDeviceTypePrinter.front())});
}

void FakeAgent::script(const std::string& request, std::vector<SnmpReply> replies)
{
    const Kep::MutexLock lock(mutex_);
    scripts_[request] = {std::move(replies), 0};
}

SnmpReply FakeAgent::reply(const std::string& request)
{
    const Kep::MutexLock lock(mutex_);
    const auto found = scripts_.find(request);
    if (found == scripts_.end())
        return noAnswer();
    Script& script = found->second;
    const std::size_t index = std::min(script.next++, script.replies.size() - 1);
    return script.replies.at(index);
}

FakeSnmp::FakeSnmp()
{
    if (theSnmp)
        throw std::logic_error("there is a fake SNMP already");
    theSnmp = this;
}

FakeSnmp::~FakeSnmp()
{
    theSnmp = nullptr;
}

FakeSnmp& FakeSnmp::current()
{
    if (!theSnmp)
        throw std::logic_error("SNMP is used, but the test made no FakeSnmp");
    return *theSnmp;
}

FakeAgent& FakeSnmp::agent(const std::string& address)
{
    const Kep::MutexLock lock(mutex_);
    std::unique_ptr<FakeAgent>& agent = agents_[address];
    if (!agent) {
        agent = std::make_unique<FakeAgent>();
        agent->onOpen({SnmpReply()});
    }
    return *agent;
}

void FakeSnmp::engineThrows(std::exception_ptr failure)
{
    const Kep::MutexLock lock(mutex_);
    engineFailure_ = std::move(failure);
}

void FakeSnmp::createThrows(std::exception_ptr failure)
{
    const Kep::MutexLock lock(mutex_);
    createFailure_ = std::move(failure);
}

std::vector<std::shared_ptr<Kep::Snmp::Profile>> FakeSnmp::profiles() const
{
    const Kep::MutexLock lock(mutex_);
    return profiles_;
}

void FakeSnmp::throwIfNoEngine() const
{
    const Kep::MutexLock lock(mutex_);
    if (engineFailure_)
        std::rethrow_exception(engineFailure_);
}

void FakeSnmp::created(const std::shared_ptr<Kep::Snmp::Profile>& profile)
{
    const Kep::MutexLock lock(mutex_);
    profiles_.push_back(profile);
    if (createFailure_)
        std::rethrow_exception(createFailure_);
}

FakeAgent* FakeSnmp::find(const std::string& address)
{
    const Kep::MutexLock lock(mutex_);
    const auto found = agents_.find(address);
    return found == agents_.end() ? nullptr : found->second.get();
}

} // namespace Fakes
