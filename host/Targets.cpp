#include "host/Targets.h"

#include "Kep/Host/Net.h"
#include "host/DisplayText.h"
#include "host/Errors.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace Host {

namespace {

constexpr std::uint32_t LastAddress = std::numeric_limits<std::uint32_t>::max();

[[noreturn]] void refuse(std::string_view text, const std::string& why)
{
    throw UsageError(inQuotes(text) + " " + why);
}

[[noreturn]] void refuseForm(std::string_view text)
{
    refuse(text, "is no address (10.0.0.7), range (10.0.0.1-10.0.0.99) or network (10.0.0.0/24)");
}

std::uint32_t addressOf(std::string_view part, std::string_view whole)
{
    const auto address = parseAddress(part);
    if (!address)
        refuseForm(whole);
    return *address;
}

int prefixOf(std::string_view part, std::string_view whole)
{
    int prefix = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), prefix);
    const bool canonical = part.size() == 1 || (part.size() == 2 && part.front() != '0');
    if (error != std::errc() || end != part.data() + part.size() || !canonical || part.front() == '-')
        refuseForm(whole);
    if (prefix > 32)
        refuse(whole, "has a prefix of " + std::to_string(prefix) + " bits; 0 to 32 are accepted");
    return prefix;
}

AddressRange networkOf(std::uint32_t address, int prefix)
{
    const std::uint32_t hostBits = prefix == 32 ? 0 : LastAddress >> prefix;
    return {address & ~hostBits, address | hostBits};
}

/// The range as written, which may end at 255.255.255.255.
AddressRange parse(std::string_view text)
{
    if (const auto slash = text.find('/'); slash != std::string_view::npos) {
        const std::uint32_t address = addressOf(text.substr(0, slash), text);
        return networkOf(address, prefixOf(text.substr(slash + 1), text));
    }
    const auto hyphen = text.find('-');
    const std::uint32_t from = addressOf(text.substr(0, hyphen), text);
    if (hyphen == std::string_view::npos)
        return {from, from};
    const std::uint32_t to = addressOf(text.substr(hyphen + 1), text);
    if (to < from)
        refuse(text, "is reversed: its first address is above its last");
    return {from, to};
}

bool isProbed(std::uint32_t address)
{
    const std::uint32_t last = address & 0xFF;
    return last != 0 && last != 0xFF;
}

/// At most two addresses running are passed over: a .255 and the .0 after it.
bool holdsProbedAddress(const AddressRange& range)
{
    return range.to - range.from >= 2 || isProbed(range.from) || isProbed(range.to);
}

AddressRange cutShort(const AddressRange& range)
{
    return {range.from, std::min(range.to, LastAddress - 1)};
}

} // namespace

AddressRange parseTarget(std::string_view text)
{
    const AddressRange range = parse(text);
    if (!holdsProbedAddress(range))
        refuse(text, "holds no address to probe; addresses that end in .0 or .255 are never probed");
    return cutShort(range);
}

std::optional<AddressRange> parseExclude(std::string_view text)
{
    const AddressRange range = parse(text);
    if (range.from == LastAddress)
        return std::nullopt;
    return cutShort(range);
}

std::string addressText(std::uint32_t address)
{
    return Kep::Net::formatIpAddress(address);
}

std::optional<std::uint32_t> parseAddress(std::string_view text)
{
    unsigned long address = 0;
    if (!Kep::Net::parseIpAddress(text, address))
        return std::nullopt;
    return static_cast<std::uint32_t>(address);
}

} // namespace Host
