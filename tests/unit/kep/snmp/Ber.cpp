#include "Ber.h"

#include <sstream>
#include <stdexcept>

namespace Ber {

namespace {

Bytes length(std::size_t size)
{
    if (size < 0x80)
        return {static_cast<char>(size)};
    return {static_cast<char>(0x82), static_cast<char>(size >> 8), static_cast<char>(size & 0xFF)};
}

Bytes arc(std::uint32_t value)
{
    Bytes result(1, static_cast<char>(value & 0x7F));
    while ((value >>= 7) != 0)
        result.insert(result.begin(), static_cast<char>(0x80 | (value & 0x7F)));
    return result;
}

void require(bool holds)
{
    if (!holds)
        throw std::runtime_error("malformed message");
}

} // namespace

Bytes tlv(unsigned char tag, const Bytes& content)
{
    return static_cast<char>(tag) + length(content.size()) + content;
}

Bytes integer(long value)
{
    Bytes content(1, static_cast<char>(value));
    while (value > 127 || value < -128)
        content.insert(content.begin(), static_cast<char>(value >>= 8));
    return tlv(integerTag, content);
}

Bytes octets(const Bytes& value)
{
    return tlv(octetsTag, value);
}

Bytes oid(const std::string& dotted)
{
    std::istringstream text(dotted);
    char dot = 0;
    std::uint32_t first = 0;
    std::uint32_t value = 0;
    text >> dot >> first >> dot >> value;
    Bytes content = arc(first * 40 + value);
    while (text >> dot >> value)
        content += arc(value);
    return tlv(oidTag, content);
}

Bytes null()
{
    return tlv(nullTag, "");
}

Bytes sequence(std::initializer_list<Bytes> parts)
{
    Bytes content;
    for (const Bytes& part : parts)
        content += part;
    return tlv(sequenceTag, content);
}

Bytes binding(const std::string& dottedOid, const Bytes& value)
{
    return sequence({oid(dottedOid), value});
}

unsigned char Reader::peekTag() const
{
    require(!atEnd());
    return static_cast<unsigned char>(bytes_[at_]);
}

unsigned char Reader::takeByte()
{
    require(!atEnd());
    return static_cast<unsigned char>(bytes_[at_++]);
}

std::size_t Reader::takeLength()
{
    std::size_t size = takeByte();
    if (size < 0x80)
        return size;
    std::size_t more = size & 0x7F;
    for (size = 0; more > 0; --more)
        size = size << 8 | takeByte();
    return size;
}

Bytes Reader::take(unsigned char tag)
{
    require(takeByte() == tag);
    const std::size_t size = takeLength();
    require(size <= bytes_.size() - at_);
    at_ += size;
    return bytes_.substr(at_ - size, size);
}

long Reader::takeInteger()
{
    const Bytes content = take(integerTag);
    require(!content.empty());
    long value = content[0] < 0 ? -1 : 0;
    for (const char byte : content)
        value = value * 256 + static_cast<unsigned char>(byte);
    return value;
}

std::string Reader::takeOid()
{
    std::string dotted;
    std::uint32_t value = 0;
    for (const char byte : take(oidTag)) {
        value = value << 7 | (static_cast<unsigned char>(byte) & 0x7F);
        if (byte < 0)
            continue;
        if (dotted.empty())
            dotted = "." + std::to_string(value / 40) + "." + std::to_string(value % 40);
        else
            dotted += "." + std::to_string(value);
        value = 0;
    }
    return dotted;
}

Bytes Pdu::encoded() const
{
    Bytes list;
    for (const Bytes& one : bindings)
        list += one;
    return tlv(tag, integer(requestId) + integer(errorStatus) + integer(errorIndex) + tlv(sequenceTag, list));
}

Pdu Pdu::decode(const Bytes& element)
{
    Reader outer(element);
    Pdu pdu;
    pdu.tag = outer.peekTag();
    Reader fields(outer.take(pdu.tag));
    pdu.requestId = fields.takeInteger();
    pdu.errorStatus = fields.takeInteger();
    pdu.errorIndex = fields.takeInteger();
    Reader list(fields.take(sequenceTag));
    while (!list.atEnd())
        pdu.bindings.push_back(tlv(sequenceTag, list.take(sequenceTag)));
    return pdu;
}

std::string Pdu::firstOid() const
{
    Reader outer(bindings.at(0));
    return Reader(outer.take(sequenceTag)).takeOid();
}

Bytes Message::encoded() const
{
    return sequence({integer(version), octets(community), pdu.encoded()});
}

Message Message::decode(const Bytes& bytes)
{
    Reader outer(bytes);
    Reader fields(outer.take(sequenceTag));
    Message message;
    message.version = fields.takeInteger();
    message.community = fields.take(octetsTag);
    const unsigned char tag = fields.peekTag();
    message.pdu = Pdu::decode(tlv(tag, fields.take(tag)));
    return message;
}

Bytes V3Message::encoded() const
{
    constexpr long usm = 3;
    constexpr long maxSize = 65507;
    const Bytes header =
        sequence({integer(messageId), integer(maxSize), octets(Bytes(1, static_cast<char>(flags))), integer(usm)});
    const Bytes security =
        sequence({octets(engine), integer(boots), integer(time), octets(user), octets(""), octets("")});
    return sequence(
        {integer(3), header, octets(security), sequence({octets(contextEngine), octets(context), pdu.encoded()})});
}

V3Message V3Message::decode(const Bytes& bytes)
{
    Reader outer(bytes);
    Reader fields(outer.take(sequenceTag));
    V3Message message;
    require(fields.takeInteger() == 3);
    Reader header(fields.take(sequenceTag));
    message.messageId = header.takeInteger();
    header.takeInteger();
    message.flags = static_cast<unsigned char>(header.take(octetsTag).at(0));
    Reader wrapper(fields.take(octetsTag));
    Reader security(wrapper.take(sequenceTag));
    message.engine = security.take(octetsTag);
    message.boots = security.takeInteger();
    message.time = security.takeInteger();
    message.user = security.take(octetsTag);
    Reader scoped(fields.take(sequenceTag));
    message.contextEngine = scoped.take(octetsTag);
    message.context = scoped.take(octetsTag);
    const unsigned char tag = scoped.peekTag();
    message.pdu = Pdu::decode(tlv(tag, scoped.take(tag)));
    return message;
}

} // namespace Ber
