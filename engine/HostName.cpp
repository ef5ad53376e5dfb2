#include "engine/HostName.h"

#include "Kep/Net.h"

#include <exception>

namespace PrinterDiscoveryPlugin {
namespace {

using LookUp = std::string (*)(unsigned long address);

std::string nameOrNothing(LookUp lookUp, unsigned long address)
{
    try {
        return lookUp(address);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

std::string findHostName(const std::string& address)
{
    unsigned long number = 0;
    Kep::Net::parseIpAddress(address, number); // a text that is no address is looked up as 0.0.0.0
    std::string name = nameOrNothing(Kep::Net::ipToHostNameNetbios, number);
    if (!name.empty())
        return name;
    name = nameOrNothing(Kep::Net::ipToHostNameDns, number);
    return name == address ? std::string() : name;
}

} // namespace PrinterDiscoveryPlugin
