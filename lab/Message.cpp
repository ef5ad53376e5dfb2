#include "lab/Message.h"

namespace Lab {
namespace {

/// An INTEGER of up to 32 bits, as all numbers of a request are.
std::optional<BerElement> nextInteger(BerReader& reader)
{
    const auto element = reader.next(Tag::integer);
    return element && readInteger32(element->contents) ? element : std::nullopt;
}

std::size_t elementSize(std::size_t contentsSize)
{
    return headerSize(contentsSize) + contentsSize;
}

} // namespace

bool Request::read(ByteView datagram)
{
    BerReader outer(datagram);
    const auto whole = outer.next(Tag::sequence);
    if (!whole || !outer.atEnd())
        return false;
    BerReader message(whole->contents);
    const auto version = nextInteger(message);
    const auto community = message.next(Tag::octetString);
    if (!version || !community)
        return false;
    const std::int32_t number = readInteger32(version->contents).value_or(-1);
    if (number != static_cast<int>(Version::V1) && number != static_cast<int>(Version::V2c))
        return false;
    _version = static_cast<Version>(number);
    _community = *community;
    return readPdu(message);
}

bool Request::readPdu(BerReader& message)
{
    const auto pdu = message.next();
    if (!pdu || !message.atEnd() || (pdu->tag != Tag::getRequest && pdu->tag != Tag::getNextRequest))
        return false;
    _isGetNext = pdu->tag == Tag::getNextRequest;
    BerReader fields(pdu->contents);
    const auto requestId = nextInteger(fields);
    if (!requestId || !nextInteger(fields) || !nextInteger(fields))
        return false;
    _requestId = requestId->whole;
    const auto list = fields.next(Tag::sequence);
    return list && fields.atEnd() && readVarbinds(list->contents);
}

bool Request::readVarbinds(ByteView list)
{
    _varbinds.clear();
    _arcs.clear();
    _arcsBegin.assign(1, 0);
    BerReader reader(list);
    while (!reader.atEnd()) {
        const auto varbind = reader.next(Tag::sequence);
        if (!varbind || !readVarbind(varbind->contents))
            return false;
    }
    return true;
}

bool Request::readVarbind(ByteView contents)
{
    BerReader reader(contents);
    const auto oid = reader.next(Tag::objectId);
    const auto value = oid ? reader.next() : std::nullopt;
    if (!value || !reader.atEnd() || !decodeOidContents(oid->contents, _arcs))
        return false;
    _varbinds.push_back({oid->whole, value->whole});
    _arcsBegin.push_back(_arcs.size());
    return true;
}

Arcs Request::oid(std::size_t index) const
{
    return Arcs(_arcs).subspan(_arcsBegin[index], _arcsBegin[index + 1] - _arcsBegin[index]);
}

AnswerWriter::AnswerWriter(const Request& request, const std::vector<Varbind>& varbinds, ErrorStatus status,
                           std::size_t errorIndex)
    : _request(request), _varbinds(varbinds), _version(integerElement(static_cast<int>(request._version))),
      _status(integerElement(static_cast<int>(status))),
      _errorIndex(integerElement(static_cast<std::int64_t>(errorIndex)))
{
    for (const Varbind& varbind : varbinds)
        _listSize += elementSize(varbind.oid.size() + varbind.value.size());
    _pduSize = request._requestId.size() + _status.size() + _errorIndex.size() + elementSize(_listSize);
    _messageSize = _version.size() + request._community.whole.size() + elementSize(_pduSize);
}

std::size_t AnswerWriter::write(std::span<std::uint8_t> out) const
{
    if (elementSize(_messageSize) > out.size())
        return 0;
    BerWriter writer(out);
    writer.header(Tag::sequence, _messageSize);
    writer.bytes(_version);
    writer.bytes(_request._community.whole);
    writer.header(Tag::response, _pduSize);
    writer.bytes(_request._requestId);
    writer.bytes(_status);
    writer.bytes(_errorIndex);
    writer.header(Tag::sequence, _listSize);
    for (const Varbind& varbind : _varbinds) {
        writer.header(Tag::sequence, varbind.oid.size() + varbind.value.size());
        writer.bytes(varbind.oid);
        writer.bytes(varbind.value);
    }
    return writer.size();
}

} // namespace Lab
