#include "lab/Value.h"

namespace Lab {
namespace {

std::uint64_t bigEndian(ByteView bytes)
{
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = (value << 8) | byte;
    return value;
}

std::string dottedBytes(ByteView bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes)
        text.append(text.empty() ? "" : ".").append(std::to_string(byte));
    return text;
}

std::string oidText(ByteView contents)
{
    Oid oid;
    return decodeOidContents(contents, oid) ? formatOid(oid) : std::string();
}

} // namespace

std::string Value::text() const
{
    switch (tag) {
    case Tag::integer:
        return std::to_string(readInteger32(contents).value_or(0));
    case Tag::counter32:
    case Tag::gauge32:
    case Tag::timeTicks:
    case Tag::counter64:
        return std::to_string(bigEndian(contents));
    case Tag::ipAddress:
        return dottedBytes(contents);
    case Tag::objectId:
        return oidText(contents);
    default:
        return {contents.begin(), contents.end()};
    }
}

} // namespace Lab
