// The reply to a NetBIOS node status request: what a name that is read from it may look like.
#include "fuzz/Target.h"
#include "net/NetbiosStatus.h"

#include <span>

namespace {

constexpr std::size_t longestName = 15;

std::uint16_t idOf(std::span<const std::uint8_t> packet)
{
    return packet.size() < 2 ? std::uint16_t{0} : static_cast<std::uint16_t>(packet[0] << 8 | packet[1]);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span packet(data, size);
    const std::uint16_t id = idOf(packet);
    const auto name = Kep::Net::readNodeStatus(packet, id);
    if (name) {
        Fuzz::require(name->size() <= longestName, "a name has at most 15 bytes");
        Fuzz::require(name->empty() || (name->back() != ' ' && name->back() != '\0'), "a name has no padding");
    }
    Fuzz::require(!Kep::Net::readNodeStatus(packet, static_cast<std::uint16_t>(id + 1)), "the request's id is needed");
    return 0;
}
