#include "lab/Snmprec.h"

#include "lab/Error.h"
#include "lab/Ipv4.h"
#include "lab/TextLines.h"

#include <charconv>
#include <limits>
#include <map>

namespace Lab {
namespace {

template <class Number> Number readNumber(std::string_view text, Number from, Number to)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < from || number > to)
        throw Error("expected a number from " + std::to_string(from) + " to " + std::to_string(to));
    return number;
}

Bytes readHexadecimal(std::string_view text)
{
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const std::string_view pair = text.substr(i, 2);
        std::uint8_t byte = 0;
        const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (error != std::errc{} || pair.size() != 2 || end != pair.data() + 2)
            throw Error("expected pairs of hexadecimal digits");
        bytes.push_back(byte);
    }
    return bytes;
}

Bytes plainBytes(std::string_view text)
{
    return {text.begin(), text.end()};
}

Bytes readAddress(std::string_view text)
{
    const auto address = parseIpv4(text);
    if (!address)
        throw Error("expected an address such as 192.0.2.1");
    return {static_cast<std::uint8_t>(*address >> 24), static_cast<std::uint8_t>(*address >> 16),
            static_cast<std::uint8_t>(*address >> 8), static_cast<std::uint8_t>(*address)};
}

Oid readOid(std::string_view text)
{
    auto oid = parseOid(text);
    if (!oid)
        throw Error("expected an OID such as 1.3.6.1.2.1.1.1.0");
    return std::move(*oid);
}

Bytes readNull(std::string_view text)
{
    if (!text.empty())
        throw Error("expected no value after type 5");
    return {};
}

Bytes readUnsigned32(std::string_view text)
{
    return encodeUnsigned(readNumber<std::uint64_t>(text, 0, std::numeric_limits<std::uint32_t>::max()));
}

Bytes readContents(std::uint8_t tag, std::string_view text)
{
    switch (tag) {
    case Tag::integer:
        return encodeSigned(
            readNumber(text, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
    case Tag::null:
        return readNull(text);
    case Tag::objectId:
        return encodeOidContents(readOid(text));
    case Tag::ipAddress:
        return readAddress(text);
    case Tag::counter64:
        return encodeUnsigned(readNumber<std::uint64_t>(text, 0, std::numeric_limits<std::uint64_t>::max()));
    case Tag::octetString:
    case Tag::opaque:
        return plainBytes(text);
    default:
        return readUnsigned32(text);
    }
}

const std::map<std::string_view, std::uint8_t>& typeTags()
{
    static const std::map<std::string_view, std::uint8_t> tags = {
        {"2", Tag::integer},    {"4", Tag::octetString}, {"5", Tag::null},         {"6", Tag::objectId},
        {"64", Tag::ipAddress}, {"65", Tag::counter32},  {"66", Tag::gauge32},     {"67", Tag::timeTicks},
        {"68", Tag::opaque},    {"70", Tag::counter64},  {"4x", Tag::octetString}, {"64x", Tag::ipAddress},
        {"68x", Tag::opaque}};
    return tags;
}

Value readValue(std::string_view type, std::string_view text)
{
    const auto tag = typeTags().find(type);
    if (tag == typeTags().end())
        throw Error("expected type 2, 4, 5, 6, 64, 65, 66, 67, 68 or 70, or 4x, 64x or 68x");
    const bool isHexadecimal = type.back() == 'x';
    Value value{tag->second, isHexadecimal ? readHexadecimal(text) : readContents(tag->second, text)};
    if (value.tag == Tag::ipAddress && value.contents.size() != 4)
        throw Error("expected an address of 4 bytes");
    return value;
}

Record readRecord(std::string_view line)
{
    const std::size_t first = line.find('|');
    const std::size_t second = first == std::string_view::npos ? first : line.find('|', first + 1);
    if (second == std::string_view::npos)
        throw Error("expected OID|type|value");
    return {readOid(line.substr(0, first)),
            readValue(line.substr(first + 1, second - first - 1), line.substr(second + 1))};
}

} // namespace

ProfilePtr readSnmprec(const std::string& name, const std::string& file, std::string_view text)
{
    std::vector<Record> records;
    std::map<Oid, std::size_t> lineOf;
    forEachLine(file, text, [&](std::string_view line, std::size_t number) {
        Record record = readRecord(line);
        const auto [other, isNew] = lineOf.try_emplace(record.oid, number);
        if (!isNew)
            throw Error("expected an OID of its own, it is that of line " + std::to_string(other->second));
        records.push_back(std::move(record));
    });
    if (records.empty())
        throw Error(file + ": expected at least one line OID|type|value, found none");
    return std::make_shared<const Profile>(name, std::move(records));
}

} // namespace Lab
