#include "net/NetbiosStatus.h"

#include "net/PacketReader.h"

#include <algorithm>

namespace Kep::Net {
namespace {

constexpr std::uint16_t typeNodeStatus = 0x0021;
constexpr std::uint16_t classInternet = 0x0001;
constexpr std::uint16_t flagResponse = 0x8000;
constexpr std::uint16_t maskOperation = 0x7800;
constexpr std::uint16_t maskErrorCode = 0x000F;
constexpr std::uint16_t flagGroupName = 0x8000;
constexpr std::uint8_t suffixMachine = 0x00;
constexpr std::uint8_t suffixFileServer = 0x20;

// Passes over a name: labels up to an empty one, or up to a pointer, which is not followed since nothing depends on
// what the name says.
void skipName(PacketReader& reader)
{
    while (!reader.failed()) {
        const std::uint8_t length = reader.u8();
        if (length >= 0xC0) {
            reader.u8();
            return;
        }
        if (length == 0) {
            return;
        }
        reader.bytes(length < 0x40 ? length : reader.left() + 1); // 0x40 to 0xBF is no length
    }
}

struct Header {
    std::uint16_t transactionId;
    std::uint16_t flags;
    std::uint16_t questions;
    std::uint16_t answers;
};

Header readHeader(PacketReader& reader)
{
    const Header header{reader.u16(), reader.u16(), reader.u16(), reader.u16()};
    reader.bytes(4); // counts of the sections after the answers
    return header;
}

// The data of the first answer; a failed reader when there is none of a node's status.
PacketReader readAnswer(PacketReader& reader, const Header& header)
{
    for (unsigned question = 0; question < header.questions && !reader.failed(); ++question) {
        skipName(reader);
        reader.bytes(4);
    }
    skipName(reader);
    const bool isStatus = reader.u16() == typeNodeStatus && reader.u16() == classInternet;
    reader.bytes(4); // time to live
    PacketReader data(reader.bytes(reader.u16()));
    if (!isStatus || reader.failed() || header.answers == 0) {
        data.bytes(data.left() + 1);
    }
    return data;
}

std::string withoutPadding(std::span<const std::uint8_t> name)
{
    const auto isPadding = [](std::uint8_t byte) { return byte == ' ' || byte == 0; };
    const auto last = std::find_if_not(name.rbegin(), name.rend(), isPadding);
    return {name.begin(), last.base()};
}

// The list of names: their number, then 15 bytes, a suffix and flags each.
std::optional<std::string> machineName(PacketReader data)
{
    std::string machine;
    std::string fileServer;
    for (unsigned left = data.u8(); left > 0; --left) {
        const auto name = data.bytes(15);
        const std::uint8_t suffix = data.u8();
        if ((data.u16() & flagGroupName) != 0) {
            continue;
        }
        if (suffix == suffixMachine && machine.empty()) {
            machine = withoutPadding(name);
        } else if (suffix == suffixFileServer && fileServer.empty()) {
            fileServer = withoutPadding(name);
        }
    }
    if (data.failed()) {
        return std::nullopt;
    }
    return machine.empty() ? fileServer : machine;
}

} // namespace

std::array<std::uint8_t, nodeStatusRequestSize> nodeStatusRequest(std::uint16_t transactionId)
{
    std::array<std::uint8_t, nodeStatusRequestSize> packet{};
    packet[0] = static_cast<std::uint8_t>(transactionId >> 8);
    packet[1] = static_cast<std::uint8_t>(transactionId & 0xFF);
    packet[5] = 1; // one question
    // "*" and 15 NULs, each half byte as a letter from "A" on (RFC 1001, section 14.1)
    packet[12] = 32;
    std::fill_n(packet.begin() + 13, 32, std::uint8_t{'A'});
    packet[13] = 'A' + ('*' >> 4);
    packet[14] = 'A' + ('*' & 0x0F);
    packet[47] = typeNodeStatus;
    packet[49] = classInternet;
    return packet;
}

std::optional<std::string> readNodeStatus(std::span<const std::uint8_t> packet, std::uint16_t transactionId)
{
    PacketReader reader(packet);
    const Header header = readHeader(reader);
    if (reader.failed() || header.transactionId != transactionId ||
        (header.flags & (flagResponse | maskOperation)) != flagResponse) {
        return std::nullopt;
    }
    if ((header.flags & maskErrorCode) != 0) {
        return std::string();
    }
    return machineName(readAnswer(reader, header));
}

} // namespace Kep::Net
