#include "lab/V3Message.h"

namespace Lab {
namespace {

constexpr std::int32_t version3 = 3;
constexpr std::int32_t userBased = 3;
constexpr std::int64_t largestMessage = 65507;

std::optional<std::int32_t> nextNumber(BerReader& reader)
{
    const auto element = reader.next(Tag::integer);
    return element ? readInteger32(element->contents) : std::nullopt;
}

std::optional<Bytes> nextOctets(BerReader& reader)
{
    const auto element = reader.next(Tag::octetString);
    return element ? std::optional(Bytes(element->contents.begin(), element->contents.end())) : std::nullopt;
}

Bytes octets(ByteView contents)
{
    return encodeElement(Tag::octetString, contents);
}

Bytes sequence(std::initializer_list<ByteView> parts)
{
    return encodeElement(Tag::sequence, concatenate(parts));
}

bool readHeader(ByteView contents, V3Message& message)
{
    BerReader reader(contents);
    const auto messageId = nextNumber(reader);
    const auto largest = nextNumber(reader);
    const auto flags = nextOctets(reader);
    const auto model = nextNumber(reader);
    if (!messageId || !largest || !flags || flags->size() != 1 || model != userBased || !reader.atEnd())
        return false;
    message.messageId = *messageId;
    message.flags = flags->front();
    return true;
}

bool readSecurity(ByteView contents, V3Message& message)
{
    BerReader outer(contents);
    const auto whole = outer.next(Tag::sequence);
    if (!whole || !outer.atEnd())
        return false;
    BerReader reader(whole->contents);
    const auto engine = nextOctets(reader);
    const auto boots = nextNumber(reader);
    const auto time = nextNumber(reader);
    const auto user = nextOctets(reader);
    if (!engine || !boots || !time || !user || !nextOctets(reader) || !nextOctets(reader) || !reader.atEnd())
        return false;
    message.engine = *engine;
    message.boots = *boots;
    message.time = *time;
    message.user = *user;
    return true;
}

bool readScope(const BerElement& scope, V3Message& message)
{
    if ((message.flags & V3Flag::encrypted) != 0)
        return scope.tag == Tag::octetString;
    BerReader reader(scope.contents);
    const auto engine = nextOctets(reader);
    const auto context = nextOctets(reader);
    const auto pdu = reader.next();
    if (scope.tag != Tag::sequence || !engine || !context || !pdu || !reader.atEnd())
        return false;
    message.contextEngine = *engine;
    message.context = *context;
    message.pdu.assign(pdu->whole.begin(), pdu->whole.end());
    return true;
}

/// The whole request ID of a PDU; 0 when there is no PDU to read (RFC 3412, section 7.1 (3)).
Bytes requestIdOf(ByteView pdu)
{
    BerReader outer(pdu);
    const auto whole = outer.next();
    BerReader fields(whole ? whole->contents : ByteView());
    const auto requestId = fields.next(Tag::integer);
    return requestId ? Bytes(requestId->whole.begin(), requestId->whole.end()) : integerElement(0);
}

} // namespace

std::optional<V3Message> V3Message::read(ByteView datagram)
{
    BerReader outer(datagram);
    const auto whole = outer.next(Tag::sequence);
    if (!whole || !outer.atEnd())
        return std::nullopt;
    BerReader reader(whole->contents);
    const auto version = nextNumber(reader);
    const auto header = reader.next(Tag::sequence);
    const auto security = reader.next(Tag::octetString);
    const auto scope = reader.next();
    V3Message message;
    if (version != version3 || !header || !security || !scope || !reader.atEnd() ||
        !readHeader(header->contents, message) || !readSecurity(security->contents, message) ||
        !readScope(*scope, message))
        return std::nullopt;
    return message;
}

Bytes V3Message::encoded() const
{
    const Bytes header = sequence(
        {integerElement(messageId), integerElement(largestMessage), octets(Bytes{flags}), integerElement(userBased)});
    const Bytes security =
        sequence({octets(engine), integerElement(boots), integerElement(time), octets(user), octets({}), octets({})});
    const Bytes scope = sequence({octets(contextEngine), octets(context), pdu});
    return sequence({integerElement(version3), header, octets(security), scope});
}

V3Message V3Message::report(const Oid& counter, Bytes agent) const
{
    const Bytes one = encodeElement(Tag::counter32, encodeUnsigned(1));
    const Bytes binding = sequence({encodeElement(Tag::objectId, encodeOidContents(counter)), one});
    V3Message answer;
    answer.messageId = messageId;
    answer.user = user;
    answer.engine = answer.contextEngine = std::move(agent);
    answer.pdu = encodeElement(Tag::report, concatenate({requestIdOf(pdu), integerElement(0), integerElement(0),
                                                         encodeElement(Tag::sequence, binding)}));
    return answer;
}

} // namespace Lab
