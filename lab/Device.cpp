#include "lab/Device.h"

#include "lab/WellKnownOids.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Lab {
namespace {

constexpr std::size_t physicalAddressSize = 6;
constexpr Address ownBits = 0xFFFFFF;

std::array<std::uint8_t, 3> ownBytes(Address address)
{
    return {static_cast<std::uint8_t>(address >> 16), static_cast<std::uint8_t>(address >> 8),
            static_cast<std::uint8_t>(address)};
}

bool isPhysicalAddress(const Record& record)
{
    return startsWith(record.oid, WellKnown::physicalAddressColumn) && record.value.tag == Tag::octetString &&
           record.value.contents.size() == physicalAddressSize;
}

bool isSerialNumber(const Record& record)
{
    const auto& oids = WellKnown::serialNumbers;
    return startsWith(record.oid, WellKnown::serialNumberColumn) ||
           std::find(oids.begin(), oids.end(), record.oid) != oids.end();
}

Value ownPhysicalAddress(const Record& record, Address address)
{
    Value value = record.value;
    const auto bytes = ownBytes(address);
    value.contents[2] = static_cast<std::uint8_t>(record.oid.back());
    std::copy(bytes.begin(), bytes.end(), value.contents.begin() + 3);
    return value;
}

Value ownSerialText(Value value, Address address)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    value.contents.push_back('-');
    for (const std::uint8_t byte : ownBytes(address)) {
        value.contents.push_back(static_cast<std::uint8_t>(digits[byte >> 4]));
        value.contents.push_back(static_cast<std::uint8_t>(digits[byte & 0xFU]));
    }
    return value;
}

Value ownSerialInteger(const Value& value, Address address)
{
    const auto number = static_cast<std::uint32_t>(readInteger32(value.contents).value_or(0));
    return {value.tag, encodeSigned((number + (address & ownBits)) & INT32_MAX)};
}

Value ownSerialNumber(const Value& value, Address address)
{
    if (value.tag == Tag::integer)
        return ownSerialInteger(value, address);
    if (value.tag == Tag::octetString && !value.contents.empty())
        return ownSerialText(value, address);
    return value;
}

} // namespace

Value individualValue(const Record& record, Address address)
{
    if (isPhysicalAddress(record))
        return ownPhysicalAddress(record, address);
    if (isSerialNumber(record))
        return ownSerialNumber(record.value, address);
    return record.value;
}

Device::Device(ProfilePtr profile, Address address, Individuality individuality)
    : _profile(std::move(profile)), _address(address), _individuality(individuality)
{
    for (const Record& record : _profile->records()) {
        const Value own = value(record);
        if (own != record.value)
            _own.emplace_back(&record, own.encoded());
    }
}

Value Device::value(const Record& record) const
{
    return _individuality == Individuality::Verbatim ? record.value : individualValue(record, _address);
}

ByteView Device::encodedValue(const Record& record) const
{
    const auto own = std::find_if(_own.begin(), _own.end(), [&](const auto& entry) { return entry.first == &record; });
    return own == _own.end() ? record.encodedValue : own->second;
}

} // namespace Lab
