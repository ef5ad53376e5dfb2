#include "lab/Ipv4.h"

#include "lab/Error.h"

#include <algorithm>
#include <charconv>

namespace Lab {
namespace {

constexpr unsigned addressBits = 32;
constexpr unsigned loopbackPrefix = 8;
constexpr Address loopbackBase = 127U << 24;
constexpr std::uint32_t block = 256;
constexpr std::uint32_t placesPerBlock = 254;

std::optional<std::uint32_t> parseDecimal(std::string_view text, std::uint32_t limit)
{
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool hasSpareZero = text.size() > 1 && text.front() == '0';
    if (error != std::errc{} || end != text.data() + text.size() || hasSpareZero || number > limit)
        return std::nullopt;
    return number;
}

/// How many of the addresses of one block of 256 below `octet` are places.
std::uint32_t placesBelow(std::uint32_t octet)
{
    return octet == 0 ? 0 : std::min(octet - 1, placesPerBlock);
}

/// How many addresses from 0.0.0.0 to before `end` are places.
std::uint64_t placesBefore(std::uint64_t end)
{
    return end / block * placesPerBlock + placesBelow(static_cast<std::uint32_t>(end % block));
}

} // namespace

std::optional<Address> parseIpv4(std::string_view text)
{
    Address address = 0;
    for (int octet = 0; octet < 4; ++octet) {
        const std::size_t dot = octet == 3 ? text.size() : text.find('.');
        const auto number = dot == std::string_view::npos ? std::nullopt : parseDecimal(text.substr(0, dot), 255);
        if (!number)
            return std::nullopt;
        address = (address << 8) | *number;
        text.remove_prefix(std::min(dot + 1, text.size()));
    }
    return address;
}

std::string formatIpv4(Address address)
{
    return std::to_string(address >> 24) + '.' + std::to_string((address >> 16) & 0xFFU) + '.' +
           std::to_string((address >> 8) & 0xFFU) + '.' + std::to_string(address & 0xFFU);
}

bool isLoopback(Address address)
{
    return address >> (addressBits - loopbackPrefix) == loopbackBase >> (addressBits - loopbackPrefix);
}

Network Network::parse(std::string_view text)
{
    const std::size_t slash = std::min(text.find('/'), text.size());
    const auto base = parseIpv4(text.substr(0, slash));
    const auto length = slash == text.size() ? std::nullopt : parseDecimal(text.substr(slash + 1), addressBits);
    if (!base || !length || *length < loopbackPrefix || !isLoopback(*base))
        throw Error("expected a network within 127.0.0.0/8 such as 127.77.0.0/24, found \"" + std::string(text) + "\"");
    const std::uint64_t size = std::uint64_t{1} << (addressBits - *length);
    if (*base % size != 0)
        throw Error("expected a network without host bits such as " +
                    Network(*base - static_cast<Address>(*base % size), *length).text() + ", found \"" +
                    std::string(text) + "\"");
    return {*base, *length};
}

std::string Network::text() const
{
    return formatIpv4(_base) + '/' + std::to_string(_prefixLength);
}

std::uint32_t Network::places() const
{
    const std::uint64_t end = _base + (std::uint64_t{1} << (addressBits - _prefixLength));
    return static_cast<std::uint32_t>(placesBefore(end) - placesBefore(_base));
}

Address Network::place(std::uint32_t index) const
{
    const std::uint64_t ordinal = placesBefore(_base) + index;
    return static_cast<Address>(ordinal / placesPerBlock * block + ordinal % placesPerBlock + 1);
}

} // namespace Lab
