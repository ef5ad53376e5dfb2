#include "Kep/Net.h"
#include "net/NetbiosClient.h"
#include "net/ReverseLookup.h"
#include "settings/HostSettings.h"

namespace Kep::Net {
namespace {

constexpr std::uint16_t netbiosNameService = 137;

} // namespace

std::string ipToHostNameNetbios(unsigned long address)
{
    if (!hostSettings().netbiosNames) {
        return {};
    }
    return askNodeStatus(static_cast<std::uint32_t>(address), netbiosNameService);
}

std::string ipToHostNameDns(unsigned long address)
{
    if (!hostSettings().dnsNames) {
        return {};
    }
    return reverseLookup(static_cast<std::uint32_t>(address));
}

} // namespace Kep::Net
