#include "lab/Ber.h"

#include <algorithm>

namespace Lab {
namespace {

constexpr std::size_t longestLength = 4;
constexpr std::uint8_t multiByteTag = 0x1F;
constexpr std::uint8_t longForm = 0x80;

/// Takes the length off the front of `bytes`.
std::optional<std::size_t> takeLength(ByteView& bytes)
{
    if (bytes.empty())
        return std::nullopt;
    const std::uint8_t first = bytes.front();
    bytes = bytes.subspan(1);
    if ((first & longForm) == 0)
        return first;
    const std::size_t count = first & 0x7FU;
    if (count == 0 || count > longestLength || count > bytes.size())
        return std::nullopt;
    std::size_t length = 0;
    for (const std::uint8_t byte : bytes.first(count))
        length = (length << 8) | byte;
    bytes = bytes.subspan(count);
    return length;
}

std::size_t lengthBytes(std::size_t size)
{
    std::size_t count = 1;
    while (size >> 8 != 0) {
        ++count;
        size >>= 8;
    }
    return count;
}

} // namespace

std::optional<BerElement> BerReader::next()
{
    if (_rest.empty() || (_rest.front() & multiByteTag) == multiByteTag)
        return std::nullopt;
    ByteView after = _rest.subspan(1);
    const auto length = takeLength(after);
    if (!length || *length > after.size())
        return std::nullopt;
    const std::size_t total = _rest.size() - after.size() + *length;
    const BerElement element{_rest.front(), after.first(*length), _rest.first(total)};
    _rest = _rest.subspan(total);
    return element;
}

std::optional<BerElement> BerReader::next(std::uint8_t tag)
{
    if (_rest.empty() || _rest.front() != tag)
        return std::nullopt;
    return next();
}

std::optional<std::int32_t> readInteger32(ByteView contents)
{
    if (contents.empty() || contents.size() > sizeof(std::int32_t))
        return std::nullopt;
    std::uint32_t value = (contents.front() & 0x80U) != 0 ? UINT32_MAX : 0;
    for (const std::uint8_t byte : contents)
        value = (value << 8) | byte;
    return static_cast<std::int32_t>(value);
}

Bytes encodeElement(std::uint8_t tag, ByteView contents)
{
    Bytes out(headerSize(contents.size()) + contents.size());
    BerWriter writer(out);
    writer.header(tag, contents.size());
    writer.bytes(contents);
    return out;
}

Bytes encodeSigned(std::int64_t value)
{
    int shift = 0;
    while ((value >> shift) < INT8_MIN || (value >> shift) > INT8_MAX)
        shift += 8;
    Bytes out;
    for (; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value >> shift) & 0xFFU));
    return out;
}

Bytes encodeUnsigned(std::uint64_t value)
{
    Bytes out;
    for (int shift = 56; shift >= 0; shift -= 8) {
        const auto byte = static_cast<std::uint8_t>((value >> shift) & 0xFFU);
        if (out.empty() && byte == 0 && shift != 0)
            continue;
        if (out.empty() && (byte & 0x80U) != 0)
            out.push_back(0);
        out.push_back(byte);
    }
    return out;
}

Bytes concatenate(std::initializer_list<ByteView> parts)
{
    Bytes all;
    for (const ByteView part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes integerElement(std::int64_t value)
{
    return encodeElement(Tag::integer, encodeSigned(value));
}

std::size_t headerSize(std::size_t size)
{
    return size < longForm ? 2 : 2 + lengthBytes(size);
}

void BerWriter::header(std::uint8_t tag, std::size_t contentsSize)
{
    byte(tag);
    if (contentsSize < longForm) {
        byte(static_cast<std::uint8_t>(contentsSize));
        return;
    }
    const std::size_t count = lengthBytes(contentsSize);
    byte(static_cast<std::uint8_t>(longForm | count));
    for (std::size_t i = count; i > 0; --i)
        byte(static_cast<std::uint8_t>(contentsSize >> (8 * (i - 1)) & 0xFFU));
}

void BerWriter::bytes(ByteView bytes)
{
    std::copy(bytes.begin(), bytes.end(), _out.begin() + static_cast<std::ptrdiff_t>(_size));
    _size += bytes.size();
}

} // namespace Lab
