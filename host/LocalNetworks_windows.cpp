#include "host/LocalNetworks.h"

#include "host/Errors.h"
#include "host/WindowsText.h"

#include <cstddef>
#include <optional>
#include <vector>

#include <winsock2.h>
#include <ws2tcpip.h>

#include <iphlpapi.h>

namespace Host {

namespace {

constexpr ULONG Wanted =
    GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER | GAA_FLAG_SKIP_FRIENDLY_NAME;

/// The system's list of the interfaces, as long as it takes: it may grow between two calls.
std::vector<std::byte> listInterfaces()
{
    ULONG size = 16384;
    for (;;) {
        std::vector<std::byte> list(size);
        auto* first = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(list.data());
        const ULONG error = GetAdaptersAddresses(AF_INET, Wanted, nullptr, first, &size);
        if (error == ERROR_SUCCESS)
            return list;
        if (error == ERROR_NO_DATA)
            return {};
        if (error != ERROR_BUFFER_OVERFLOW)
            throw Failure("cannot list the interfaces: " + systemMessage(error));
    }
}

std::optional<AddressRange> networkOf(const IP_ADAPTER_UNICAST_ADDRESS& entry)
{
    const unsigned length = entry.OnLinkPrefixLength;
    if (entry.Address.lpSockaddr->sa_family != AF_INET || length > 32)
        return std::nullopt;
    const auto* place = reinterpret_cast<const sockaddr_in*>(entry.Address.lpSockaddr);
    const std::uint32_t address = ntohl(place->sin_addr.s_addr);
    const auto mask = static_cast<std::uint32_t>(~std::uint64_t{0} << (32 - length));
    return AddressRange{address & mask, address | ~mask};
}

void addNetworks(const IP_ADAPTER_ADDRESSES& interface_, AddressRanges& networks)
{
    if (interface_.OperStatus != IfOperStatusUp || interface_.IfType == IF_TYPE_SOFTWARE_LOOPBACK)
        return;
    for (const auto* entry = interface_.FirstUnicastAddress; entry != nullptr; entry = entry->Next)
        if (const auto network = networkOf(*entry))
            networks.push_back(*network);
}

} // namespace

AddressRanges localNetworks()
{
    const std::vector<std::byte> list = listInterfaces();
    AddressRanges networks;
    if (list.empty())
        return networks;
    for (const auto* entry = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(list.data()); entry != nullptr;
         entry = entry->Next)
        addNetworks(*entry, networks);
    return networks;
}

} // namespace Host
