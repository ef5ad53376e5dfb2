#include "lab/hostile/Packet.h"

namespace Lab {
namespace {

Bytes copy(ByteView bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// The last element of `contents`; what stands before it goes to `front`.
std::optional<BerElement> splitLast(ByteView contents, Bytes& front)
{
    BerReader reader(contents);
    auto last = reader.next();
    while (last && !reader.atEnd()) {
        front.insert(front.end(), last->whole.begin(), last->whole.end());
        last = reader.next();
    }
    return last;
}

bool readBinding(const BerElement& element, std::vector<Packet::Binding>& bindings)
{
    BerReader reader(element.contents);
    const auto oid = reader.next(Tag::objectId);
    const auto value = oid ? reader.next() : std::nullopt;
    if (!value)
        return false;
    bindings.push_back({copy(oid->whole), copy(value->whole)});
    return true;
}

bool readPdu(const BerElement& element, Packet& packet)
{
    packet.pdu = element.tag;
    BerReader fields(element.contents);
    for (Bytes* const part : {&packet.requestId, &packet.errorStatus, &packet.errorIndex}) {
        const auto field = fields.next(Tag::integer);
        if (!field)
            return false;
        *part = copy(field->whole);
    }
    const auto list = fields.next(Tag::sequence);
    BerReader reader(list ? list->contents : ByteView());
    while (list && !reader.atEnd()) {
        const auto binding = reader.next(Tag::sequence);
        if (!binding || !readBinding(*binding, packet.bindings))
            return false;
    }
    return list.has_value();
}

} // namespace

std::optional<Packet> Packet::read(ByteView message)
{
    Packet packet;
    auto element = BerReader(message).next(Tag::sequence);
    while (element && element->tag == Tag::sequence)
        element = splitLast(element->contents, packet.fronts.emplace_back());
    return element && readPdu(*element, packet) ? std::optional(std::move(packet)) : std::nullopt;
}

Bytes Packet::encoded() const
{
    Bytes list;
    for (const Binding& binding : bindings) {
        const Bytes both = encodeElement(Tag::sequence, concatenate({binding.oid, binding.value}));
        list.insert(list.end(), both.begin(), both.end());
    }
    Bytes message =
        encodeElement(pdu, concatenate({requestId, errorStatus, errorIndex, encodeElement(Tag::sequence, list)}));
    for (auto front = fronts.rbegin(); front != fronts.rend(); ++front)
        message = encodeElement(Tag::sequence, concatenate({*front, message}));
    return message;
}

std::optional<Oid> Packet::oid() const
{
    Oid arcs;
    if (bindings.empty() ||
        !decodeOidContents(BerReader(bindings.front().oid).next().value_or(BerElement{}).contents, arcs))
        return std::nullopt;
    return arcs;
}

} // namespace Lab
