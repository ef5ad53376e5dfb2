#include "lab/hostile/Packet.h"
#include "lab/hostile/Tricks.h"

#include <array>

namespace Lab {
namespace {

constexpr std::size_t largestDatagram = 65507;
constexpr std::size_t largeValue = 60000;
constexpr std::uint8_t unknownValue = 0x4F;
constexpr std::uint8_t unknownPdu = 0xAF;

using Spoil = Bytes (*)(Packet&);

/// Spoils every answer in one of the ways given, which take turns.
template <Spoil... ways> Trick spoiling()
{
    return [turn = std::size_t{0}](const Occasion& occasion) mutable {
        constexpr std::array<Spoil, sizeof...(ways)> all{ways...};
        Packet packet = Packet::read(occasion.honest).value();
        return std::vector{Reply{all[turn++ % all.size()](packet)}};
    };
}

void setValue(Packet& packet, const Bytes& value)
{
    for (Packet::Binding& binding : packet.bindings)
        binding.value = value;
}

Bytes octetsOf(char c, std::size_t count)
{
    return Bytes(count, static_cast<std::uint8_t>(c));
}

Bytes nineByteInteger()
{
    return encodeElement(Tag::integer, Bytes(9, 0x01));
}

/// The OID lengthened to one arc more than there may be.
Bytes tooManyArcs(const Oid& oid)
{
    Oid arcs = oid;
    arcs.resize(maximumArcs + 1, 1);
    return encodeElement(Tag::objectId, encodeOidContents(arcs));
}

Trick truncated()
{
    return [turn = std::size_t{0}](const Occasion& occasion) mutable {
        constexpr std::size_t step = 7;
        const std::size_t size = 1 + (turn++ * step) % (occasion.honest.size() - 1);
        return std::vector{Reply{Bytes(occasion.honest.begin(), occasion.honest.begin() + static_cast<int>(size))}};
    };
}

Bytes overlong(Packet& packet)
{
    Bytes message = packet.encoded();
    message.resize(largestDatagram);
    return message;
}

/// The message with `header` for its own tag and length.
Bytes withHeader(const Packet& packet, const Bytes& header)
{
    const Bytes message = packet.encoded();
    return concatenate({header, BerReader(message).next().value().contents});
}

Bytes lengthBeyondTheEnd(Packet& packet)
{
    return withHeader(packet, {Tag::sequence, 0x84, 0xFF, 0xFF, 0xFF, 0xFF});
}

Bytes lengthWithoutAnEnd(Packet& packet)
{
    return withHeader(packet, {Tag::sequence, 0x80});
}

Bytes lengthBeyondItsBinding(Packet& packet)
{
    for (Packet::Binding& binding : packet.bindings)
        binding.value[1] = 0x7F;
    return packet.encoded();
}

Bytes lengthOfNothing(Packet& packet)
{
    return withHeader(packet, {Tag::sequence, 0});
}

Bytes longValue(Packet& packet)
{
    setValue(packet, nineByteInteger());
    return packet.encoded();
}

Bytes longErrorStatus(Packet& packet)
{
    packet.errorStatus = nineByteInteger();
    return packet.encoded();
}

Bytes longRequestId(Packet& packet)
{
    packet.requestId = nineByteInteger();
    return packet.encoded();
}

Bytes longName(Packet& packet)
{
    const Oid oid = packet.oid().value_or(Oid{1, 3});
    for (Packet::Binding& binding : packet.bindings)
        binding.oid = tooManyArcs(oid);
    return packet.encoded();
}

Bytes longOidValue(Packet& packet)
{
    setValue(packet, tooManyArcs({1, 3}));
    return packet.encoded();
}

Bytes typeOfNoValue(Packet& packet)
{
    setValue(packet, encodeElement(unknownValue, octetsOf('?', 4)));
    return packet.encoded();
}

Bytes typeOfNoPdu(Packet& packet)
{
    packet.pdu = unknownPdu;
    return packet.encoded();
}

Bytes otherRequestId(Packet& packet)
{
    packet.requestId.back() ^= 1;
    return packet.encoded();
}

/// Version 3 has no community: there a text stands in the place of header and security.
Bytes otherCommunity(Packet& packet)
{
    BerReader reader(packet.fronts.front());
    const Bytes version = [&] {
        const ByteView whole = reader.next().value().whole;
        return Bytes(whole.begin(), whole.end());
    }();
    packet.fronts.front() = concatenate({version, encodeElement(Tag::octetString, octetsOf('?', 6))});
    return packet.encoded();
}

Bytes largeTexts(Packet& packet)
{
    for (Packet::Binding& binding : packet.bindings)
        if (binding.value.front() == Tag::octetString)
            binding.value = encodeElement(Tag::octetString, octetsOf('x', largeValue));
    return packet.encoded();
}

template <int status> Bytes failing(Packet& packet)
{
    packet.errorStatus = integerElement(status);
    packet.errorIndex = integerElement(1);
    return packet.encoded();
}

constexpr NamedTrick messageTrickList[] = {
    {"truncated-messages", truncated},
    {"overlong-messages", spoiling<overlong>},
    {"lying-lengths", spoiling<lengthBeyondTheEnd, lengthWithoutAnEnd, lengthBeyondItsBinding, lengthOfNothing>},
    {"nine-byte-integers", spoiling<longValue, longErrorStatus, longRequestId>},
    {"oids-of-129-arcs", spoiling<longName, longOidValue>},
    {"unknown-types", spoiling<typeOfNoValue, typeOfNoPdu>},
    {"wrong-request-id", spoiling<otherRequestId>},
    {"wrong-community", spoiling<otherCommunity>},
    {"values-of-60-kb", spoiling<largeTexts>},
    {"error-status-5", spoiling<failing<5>>},
    {"error-status-99", spoiling<failing<99>>},
};

} // namespace

std::span<const NamedTrick> messageTricks()
{
    return messageTrickList;
}

} // namespace Lab
