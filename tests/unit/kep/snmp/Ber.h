/// SNMP messages byte by byte, written and read without the library that is under test.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Ber {

using Bytes = std::string; ///< 8-bit clean

inline constexpr unsigned char integerTag = 0x02, octetsTag = 0x04, nullTag = 0x05, oidTag = 0x06, sequenceTag = 0x30;
inline constexpr unsigned char getTag = 0xA0, getNextTag = 0xA1, responseTag = 0xA2, reportTag = 0xA8;
inline constexpr unsigned char noSuchObjectTag = 0x80, noSuchInstanceTag = 0x81, endOfMibViewTag = 0x82;

Bytes tlv(unsigned char tag, const Bytes& content);
Bytes integer(long value);
Bytes octets(const Bytes& value);
Bytes oid(const std::string& dotted);
Bytes null();
Bytes sequence(std::initializer_list<Bytes> parts);
Bytes binding(const std::string& dottedOid, const Bytes& value);

/// Takes one element after the other out of a message. Throws `std::runtime_error` on anything malformed.
class Reader {
public:
    explicit Reader(Bytes bytes) : bytes_(std::move(bytes)) {}
    bool atEnd() const { return at_ == bytes_.size(); }
    unsigned char peekTag() const;
    Bytes take(unsigned char tag); ///< the content of the next element, which has this tag
    long takeInteger();
    std::string takeOid(); ///< dotted

private:
    unsigned char takeByte();
    std::size_t takeLength();

    Bytes bytes_;
    std::size_t at_ = 0;
};

/// A PDU with its variable bindings, each an encoded element.
struct Pdu {
    unsigned char tag = responseTag;
    long requestId = 0;
    long errorStatus = 0;
    long errorIndex = 0;
    std::vector<Bytes> bindings;

    Bytes encoded() const;
    static Pdu decode(const Bytes& element);
    std::string firstOid() const;
};

/// A message of SNMPv1 (version 0) or SNMPv2c (version 1).
struct Message {
    long version = 1;
    Bytes community;
    Pdu pdu;

    Bytes encoded() const;
    static Message decode(const Bytes& bytes);
};

/// An SNMPv3 message without authentication and privacy (RFC 3412, section 6; RFC 3414, section 2.4).
struct V3Message {
    long messageId = 0;
    unsigned char flags = 0;
    Bytes engine;
    long boots = 0;
    long time = 0;
    Bytes user;
    Bytes contextEngine;
    Bytes context;
    Pdu pdu;

    Bytes encoded() const;
    static V3Message decode(const Bytes& bytes);
};

} // namespace Ber
