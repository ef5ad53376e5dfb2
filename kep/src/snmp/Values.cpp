#include "snmp/Values.h"

#include <array>
#include <span>

namespace Kep::Snmp {

namespace {

std::string bytesOf(const netsnmp_variable_list& binding)
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): octets are characters
    return {reinterpret_cast<const char*>(binding.val.string), binding.val_len};
}

std::string signedText(const netsnmp_variable_list& binding)
{
    return std::to_string(*binding.val.integer);
}

std::string unsignedText(const netsnmp_variable_list& binding)
{
    return std::to_string(static_cast<std::uint32_t>(*binding.val.integer));
}

std::string counter64Text(const netsnmp_variable_list& binding)
{
    const auto high = static_cast<std::uint32_t>(binding.val.counter64->high);
    const auto low = static_cast<std::uint32_t>(binding.val.counter64->low);
    return std::to_string(std::uint64_t{high} << 32 | low);
}

std::string addressText(const netsnmp_variable_list& binding)
{
    std::string text;
    for (const u_char octet : std::span(binding.val.string, binding.val_len))
        text.append(text.empty() ? 0 : 1, '.').append(std::to_string(octet));
    return text;
}

// The library decodes numbers that come wrapped in an Opaque value; this gives the Opaque's content back.
std::string wrappedNumber(const netsnmp_variable_list& binding) KEP_REQUIRES(libraryMutex)
{
    constexpr std::size_t headerSize = 2;
    std::array<u_char, 32> buffer{};
    std::size_t room = buffer.size();
    u_char* end = nullptr;
    if (binding.type == ASN_OPAQUE_FLOAT)
        end = asn_build_float(buffer.data(), &room, binding.type, binding.val.floatVal, sizeof(float));
    else if (binding.type == ASN_OPAQUE_DOUBLE)
        end = asn_build_double(buffer.data(), &room, binding.type, binding.val.doubleVal, sizeof(double));
    else if (binding.type == ASN_OPAQUE_I64)
        end = asn_build_signed_int64(buffer.data(), &room, binding.type, binding.val.counter64, sizeof(counter64));
    else
        end = asn_build_unsigned_int64(buffer.data(), &room, binding.type, binding.val.counter64, sizeof(counter64));
    return end == nullptr ? std::string() : std::string(buffer.data() + headerSize, end);
}

std::string rawText(const netsnmp_variable_list& binding) KEP_REQUIRES(libraryMutex)
{
    switch (binding.type) {
    case ASN_OPAQUE_FLOAT:
    case ASN_OPAQUE_DOUBLE:
    case ASN_OPAQUE_I64:
    case ASN_OPAQUE_U64:
    case ASN_OPAQUE_COUNTER64:
        return wrappedNumber(binding);
    default:
        return bytesOf(binding);
    }
}

} // namespace

Oid oidOf(const oid* arcs, std::size_t length)
{
    std::vector<std::uint32_t> result(length);
    for (std::size_t i = 0; i < length; ++i)
        result[i] = static_cast<std::uint32_t>(arcs[i]);
    return Oid(std::move(result));
}

bool hasValue(const netsnmp_variable_list& binding)
{
    switch (binding.type) {
    case ASN_NULL:
    case SNMP_NOSUCHOBJECT:
    case SNMP_NOSUCHINSTANCE:
    case SNMP_ENDOFMIBVIEW:
        return false;
    default:
        return true;
    }
}

Variant valueOf(const netsnmp_variable_list& binding)
{
    switch (binding.type) {
    case ASN_OCTET_STR:
        return Variant(bytesOf(binding));
    case ASN_OBJECT_ID:
        return Variant(oidOf(binding.val.objid, binding.val_len / sizeof(oid)).text());
    case ASN_INTEGER:
        return Variant::snmp(VariantType::snmpInteger, signedText(binding));
    case ASN_COUNTER:
        return Variant::snmp(VariantType::snmpCounter32, unsignedText(binding));
    case ASN_GAUGE:
    case ASN_UINTEGER:
        return Variant::snmp(VariantType::snmpGauge32, unsignedText(binding));
    case ASN_TIMETICKS:
        return Variant::snmp(VariantType::snmpTimeTicks, unsignedText(binding));
    case ASN_COUNTER64:
        return Variant::snmp(VariantType::snmpCounter64, counter64Text(binding));
    case ASN_IPADDRESS:
        return Variant::snmp(VariantType::snmpIpAddress, addressText(binding));
    default:
        return Variant::snmp(VariantType::snmpOpaque, rawText(binding));
    }
}

} // namespace Kep::Snmp
