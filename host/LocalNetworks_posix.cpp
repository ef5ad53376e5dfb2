#include "host/LocalNetworks.h"

#include "host/Errors.h"

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace Host {

namespace {

struct FreeAddresses {
    void operator()(ifaddrs* list) const { freeifaddrs(list); }
};

std::uint32_t numberOf(const sockaddr* address)
{
    return ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr);
}

std::optional<AddressRange> networkOf(const ifaddrs& entry)
{
    const bool hasNetwork =
        entry.ifa_addr != nullptr && entry.ifa_addr->sa_family == AF_INET && entry.ifa_netmask != nullptr;
    if (!hasNetwork || (entry.ifa_flags & IFF_UP) == 0 || (entry.ifa_flags & IFF_LOOPBACK) != 0)
        return std::nullopt;
    const std::uint32_t mask = numberOf(entry.ifa_netmask);
    const std::uint32_t address = numberOf(entry.ifa_addr);
    return AddressRange{address & mask, address | ~mask};
}

} // namespace

AddressRanges localNetworks()
{
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        throw Failure("cannot list the interfaces: " + std::generic_category().message(errno));
    const std::unique_ptr<ifaddrs, FreeAddresses> owner(list);
    AddressRanges networks;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next)
        if (const auto network = networkOf(*entry))
            networks.push_back(*network);
    return networks;
}

} // namespace Host
