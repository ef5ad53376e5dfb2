/// The part of the Basic Encoding Rules that SNMP uses: definite lengths, one-byte tags (RFC 3417, section 8).
///
/// The reader takes bytes from the network: each read is checked against what is left, and nothing is believed that
/// does not fit. The writer appends to a buffer of bounded size, which its caller provides. Safe from any thread as
/// long as each object stays with one.
#pragma once

#include "lab/Oid.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Lab {

/// Tags of SNMP (RFC 1157 and RFC 3416).
namespace Tag {
constexpr std::uint8_t integer = 0x02;
constexpr std::uint8_t octetString = 0x04;
constexpr std::uint8_t null = 0x05;
constexpr std::uint8_t objectId = 0x06;
constexpr std::uint8_t sequence = 0x30;
constexpr std::uint8_t ipAddress = 0x40;
constexpr std::uint8_t counter32 = 0x41;
constexpr std::uint8_t gauge32 = 0x42;
constexpr std::uint8_t timeTicks = 0x43;
constexpr std::uint8_t opaque = 0x44;
constexpr std::uint8_t counter64 = 0x46;
constexpr std::uint8_t noSuchInstance = 0x81;
constexpr std::uint8_t endOfMibView = 0x82;
constexpr std::uint8_t getRequest = 0xA0;
constexpr std::uint8_t getNextRequest = 0xA1;
constexpr std::uint8_t response = 0xA2;
constexpr std::uint8_t report = 0xA8;
} // namespace Tag

/// One element: its tag, its contents, and all of its bytes.
struct BerElement {
    std::uint8_t tag = 0;
    ByteView contents;
    ByteView whole;
};

class BerReader {
public:
    /// Reads from `bytes`, which must outlive the reader and the elements that it gives.
    explicit BerReader(ByteView bytes) : _rest(bytes) {}

    [[nodiscard]] bool atEnd() const { return _rest.empty(); }

    /// The next element, whatever its tag. Nothing when the bytes left are no complete element: a multi-byte tag, an
    /// indefinite length, a length of more than four bytes or one beyond the end.
    std::optional<BerElement> next();

    /// The next element if it has this tag.
    std::optional<BerElement> next(std::uint8_t tag);

private:
    ByteView _rest;
};

/// The value of an INTEGER's contents of 1 to 4 bytes; nothing for other sizes.
std::optional<std::int32_t> readInteger32(ByteView contents);

/// The whole element: tag, shortest form of the length, contents.
Bytes encodeElement(std::uint8_t tag, ByteView contents);

/// The shortest two's complement contents for a signed value, and for an unsigned one (a leading zero byte where the
/// first bit is set).
Bytes encodeSigned(std::int64_t value);
Bytes encodeUnsigned(std::uint64_t value);

/// A whole INTEGER.
Bytes integerElement(std::int64_t value);

/// `parts` one after another.
Bytes concatenate(std::initializer_list<ByteView> parts);

/// How many bytes tag and length take before contents of `size` bytes.
std::size_t headerSize(std::size_t size);

/// Appends to a buffer that is large enough, which the caller has made sure of with `headerSize`.
class BerWriter {
public:
    explicit BerWriter(std::span<std::uint8_t> out) : _out(out) {}

    void header(std::uint8_t tag, std::size_t contentsSize);
    void bytes(ByteView bytes);

    [[nodiscard]] std::size_t size() const { return _size; }

private:
    void byte(std::uint8_t value) { _out[_size++] = value; }

    std::span<std::uint8_t> _out;
    std::size_t _size = 0;
};

} // namespace Lab
