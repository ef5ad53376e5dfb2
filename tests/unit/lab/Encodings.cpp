// The codec held against net-snmp's routines.
#include "lab/Ber.h"
#include "lab/Snmprec.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <gmock/gmock.h>

#include <array>

namespace Lab {
namespace {

using Buffer = std::array<u_char, 1024>;

/// What one of net-snmp's asn_build functions writes.
template <class Build> Bytes netSnmp(Build build)
{
    Buffer buffer{};
    std::size_t left = buffer.size();
    const u_char* end = build(buffer.data(), &left);
    EXPECT_NE(end, nullptr);
    return Bytes(static_cast<const u_char*>(buffer.data()), end);
}

Bytes ours(const std::string& typeAndValue)
{
    return readSnmprec("device", "device", "1.3.6.1|" + typeAndValue)->records().at(0).encodedValue;
}

TEST(Encodings, IntegersAreThoseOfNetSnmp)
{
    for (const long value : {0L, 1L, -1L, 127L, 128L, -128L, -129L, 255L, 256L, 32767L, 32768L, -32768L, -32769L,
                             8388607L, 8388608L, 2147483647L, -2147483647L - 1})
        EXPECT_EQ(ours("2|" + std::to_string(value)), netSnmp([&](u_char* out, std::size_t* left) {
                      return asn_build_int(out, left, ASN_INTEGER, &value, sizeof value);
                  }))
            << value;
}

TEST(Encodings, UnsignedNumbersAreThoseOfNetSnmp)
{
    for (const std::uint32_t value :
         {0U, 1U, 127U, 128U, 255U, 256U, 32768U, 65535U, 8388608U, 2147483648U, 4294967295U})
        for (const u_char type : std::initializer_list<u_char>{ASN_COUNTER, ASN_GAUGE, ASN_TIMETICKS}) {
            const u_long number = value;
            EXPECT_EQ(ours(std::to_string(type) + "|" + std::to_string(value)),
                      netSnmp([&](u_char* out, std::size_t* left) {
                          return asn_build_unsigned_int(out, left, type, &number, sizeof number);
                      }))
                << int{type} << " " << value;
        }
}

TEST(Encodings, LongCountersAreThoseOfNetSnmp)
{
    for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{255}, std::uint64_t{4294967296},
                                      std::uint64_t{INT64_MAX}, std::uint64_t{UINT64_MAX}}) {
        const counter64 number{static_cast<u_long>(value >> 32), static_cast<u_long>(value & UINT32_MAX)};
        EXPECT_EQ(ours("70|" + std::to_string(value)), netSnmp([&](u_char* out, std::size_t* left) {
                      return asn_build_unsigned_int64(out, left, ASN_COUNTER64, &number, sizeof number);
                  }))
            << value;
    }
}

TEST(Encodings, TextsOfEveryLengthAreReadByNetSnmp)
{
    for (const std::size_t size : {0U, 1U, 127U, 128U, 255U, 256U, 900U}) {
        Bytes encoded = ours("4|" + std::string(size, 'x'));
        Buffer text{};
        std::size_t left = encoded.size();
        std::size_t textSize = text.size();
        u_char type = 0;
        ASSERT_NE(asn_parse_string(encoded.data(), &left, &type, text.data(), &textSize), nullptr);
        EXPECT_EQ(type, ASN_OCTET_STR);
        EXPECT_EQ(left, 0U);
        EXPECT_EQ(std::string(text.data(), text.data() + textSize), std::string(size, 'x'));
    }
}

TEST(Encodings, ObjectIdsAreThoseOfNetSnmp)
{
    for (const char* text :
         {"0.0", "1.3.6.1.2.1.25.3.1.5", "2.5.4", "1.3.127.128.16383.16384.2097152.268435456.4294967295"}) {
        const Oid arcs = parseOid(text).value();
        std::vector<oid> theirs(arcs.begin(), arcs.end());
        EXPECT_EQ(ours("6|" + std::string(text)), netSnmp([&](u_char* out, std::size_t* left) {
                      return asn_build_objid(out, left, ASN_OBJECT_ID, theirs.data(), theirs.size());
                  }))
            << text;
    }
}

TEST(Encodings, NullIsThatOfNetSnmp)
{
    EXPECT_EQ(ours("5|"), netSnmp([](u_char* out, std::size_t* left) { return asn_build_null(out, left, ASN_NULL); }));
}

TEST(Encodings, SignedContentsReadBack)
{
    for (const std::int32_t value : {0, 1, -1, 127, 128, -128, -129, 8388608, INT32_MAX, INT32_MIN})
        EXPECT_EQ(readInteger32(encodeSigned(value)), value);
}

TEST(Encodings, IntegersOfOtherSizesAreNoNumbers)
{
    EXPECT_FALSE(readInteger32({}));
    EXPECT_FALSE(readInteger32(Bytes{0, 0, 0, 0, 1}));
}

TEST(Encodings, TheReaderTakesElementsOneByOne)
{
    const Bytes bytes{0x02, 0x01, 0x05, 0x04, 0x81, 0x02, 'h', 'i'};
    BerReader reader(bytes);
    EXPECT_FALSE(reader.next(Tag::octetString)) << "the integer comes first";
    EXPECT_THAT(reader.next(Tag::integer).value().contents, testing::ElementsAre(5));
    const BerElement text = reader.next().value();
    EXPECT_EQ(text.tag, Tag::octetString);
    EXPECT_THAT(text.contents, testing::ElementsAre('h', 'i'));
    EXPECT_EQ(text.whole.size(), 5U);
    EXPECT_TRUE(reader.atEnd());
    EXPECT_FALSE(reader.next());
}

TEST(Encodings, TheReaderRefusesWhatIsNotComplete)
{
    for (const Bytes& bytes :
         {Bytes{}, Bytes{0x04}, Bytes{0x04, 0x01}, Bytes{0x04, 0x80, 0, 0}, Bytes{0x04, 0x81}, Bytes{0x04, 0x82, 0x01},
          Bytes{0x04, 0x85, 0, 0, 0, 0, 1, 0}, Bytes{0x04, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 1}, Bytes{0x1F, 0x01, 0x00},
          Bytes{0x04, 0xFF}})
        EXPECT_FALSE(BerReader(bytes).next()) << testing::PrintToString(bytes);
}

} // namespace
} // namespace Lab
