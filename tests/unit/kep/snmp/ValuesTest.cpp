#include "Sessions.h"

using namespace Ber;
using Kep::VariantType;

namespace {

struct Sample {
    const char* name;
    Bytes encoded;
    VariantType type;
    std::string text;
};

void PrintTo(const Sample& sample, std::ostream* stream)
{
    *stream << sample.name;
}

Bytes raw(const char* bytes, std::size_t size)
{
    return {bytes, size};
}

class Values : public AgentTest, public testing::WithParamInterface<Sample> {};

const Bytes everyByte = [] {
    Bytes bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}();

INSTANTIATE_TEST_SUITE_P(
    Samples, Values,
    testing::Values(
        Sample{"text", octets("a printer"), VariantType::text, "a printer"},
        Sample{"emptyText", octets(""), VariantType::text, ""},
        Sample{"everyByte", octets(everyByte), VariantType::text, everyByte},
        Sample{"oid", oid(".1.3.6.1.2.1.25.3.1.5"), VariantType::text, ".1.3.6.1.2.1.25.3.1.5"},
        Sample{"largeArc", oid(".1.3.4294967295"), VariantType::text, ".1.3.4294967295"},
        Sample{"zeroOid", tlv(oidTag, Bytes(1, '\0')), VariantType::text, ".0.0"},
        Sample{"integer", integer(42), VariantType::snmpInteger, "42"},
        Sample{"negative", integer(-1), VariantType::snmpInteger, "-1"},
        Sample{"smallest", integer(-2147483648L), VariantType::snmpInteger, "-2147483648"},
        Sample{"largest", integer(2147483647), VariantType::snmpInteger, "2147483647"},
        Sample{"counter", tlv(0x41, raw("\0\xFF\xFF\xFF\xFF", 5)), VariantType::snmpCounter32, "4294967295"},
        Sample{"gauge", tlv(0x42, raw("\x07", 1)), VariantType::snmpGauge32, "7"},
        Sample{"timeTicks", tlv(0x43, raw("\x01\0", 2)), VariantType::snmpTimeTicks, "256"},
        Sample{"unsigned", tlv(0x47, raw("\x09", 1)), VariantType::snmpGauge32, "9"},
        Sample{"counter64", tlv(0x46, raw("\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 9)), VariantType::snmpCounter64,
               "18446744073709551615"},
        Sample{"smallCounter64", tlv(0x46, raw("\x01\0\0\0\0", 5)), VariantType::snmpCounter64, "4294967296"},
        Sample{"address", tlv(0x40, raw("\x0A\0\xFF\x01", 4)), VariantType::snmpIpAddress, "10.0.255.1"},
        Sample{"opaque", tlv(0x44, raw("\x04\x01x", 3)), VariantType::snmpOpaque, raw("\x04\x01x", 3)},
        Sample{"opaqueFloat", tlv(0x44, raw("\x9F\x78\x04\x3F\x80\0\0", 7)), VariantType::snmpOpaque,
               raw("\x9F\x78\x04\x3F\x80\0\0", 7)},
        Sample{"opaqueDouble", tlv(0x44, raw("\x9F\x79\x08\x3F\xF0\0\0\0\0\0\0", 11)), VariantType::snmpOpaque,
               raw("\x9F\x79\x08\x3F\xF0\0\0\0\0\0\0", 11)},
        Sample{"opaqueSigned", tlv(0x44, raw("\x9F\x7A\x01\xFE", 4)), VariantType::snmpOpaque,
               raw("\x9F\x7A\x01\xFE", 4)},
        Sample{"opaqueUnsigned", tlv(0x44, raw("\x9F\x7B\x01\x05", 4)), VariantType::snmpOpaque,
               raw("\x9F\x7B\x01\x05", 4)},
        Sample{"bits", tlv(0x03, raw("\0\x0F", 2)), VariantType::snmpOpaque, raw("\0\x0F", 2)},
        Sample{"nsap", tlv(0x45, raw("\x01\x02", 2)), VariantType::snmpOpaque, raw("\x01\x02", 2)}),
    [](const auto& sample) { return sample.param.name; });

} // namespace

TEST_P(Values, KeepTheirKindAndText)
{
    agentGives(sysDescr, GetParam().encoded);
    const Kep::Variant value = get();
    EXPECT_EQ(value.type(), static_cast<int>(GetParam().type));
    EXPECT_EQ(std::string(value), GetParam().text);
}
