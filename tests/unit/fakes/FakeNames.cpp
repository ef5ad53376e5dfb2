#include "fakes/FakeNames.h"

#include "Kep/Net.h"
#include "fakes/Journal.h"

#include <stdexcept>

namespace Fakes {
namespace {

FakeNames* currentNames = nullptr;

} // namespace

FakeNames::FakeNames()
{
    if (currentNames)
        throw std::logic_error("there are fake names already");
    currentNames = this;
}

FakeNames::~FakeNames()
{
    currentNames = nullptr;
}

void FakeNames::netbios(const std::string& address, const std::string& name)
{
    script("netbios", address, {name, nullptr});
}

void FakeNames::dns(const std::string& address, const std::string& name)
{
    script("dns", address, {name, nullptr});
}

void FakeNames::netbiosThrows(const std::string& address, std::exception_ptr failure)
{
    script("netbios", address, {{}, std::move(failure)});
}

void FakeNames::dnsThrows(const std::string& address, std::exception_ptr failure)
{
    script("dns", address, {{}, std::move(failure)});
}

void FakeNames::script(const std::string& service, const std::string& address, Result result)
{
    const Kep::MutexLock lock(mutex_);
    results_[service + " " + address] = std::move(result);
}

std::string FakeNames::lookUp(const std::string& service, unsigned long address)
{
    const std::string key = service + " " + Kep::Net::formatIpAddress(static_cast<std::uint32_t>(address));
    Journal::record(key);
    if (!currentNames)
        return {};
    const Kep::MutexLock lock(currentNames->mutex_);
    const auto found = currentNames->results_.find(key);
    if (found == currentNames->results_.end())
        return {};
    if (found->second.failure)
        std::rethrow_exception(found->second.failure);
    return found->second.name;
}

} // namespace Fakes

namespace Kep::Net {

std::string ipToHostNameNetbios(unsigned long address)
{
    return Fakes::FakeNames::lookUp("netbios", address);
}

std::string ipToHostNameDns(unsigned long address)
{
    return Fakes::FakeNames::lookUp("dns", address);
}

} // namespace Kep::Net
