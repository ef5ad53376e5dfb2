#include "host/Targets.h"

#include "host/DisplayText.h"
#include "host/Errors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

namespace Host {

namespace {

constexpr std::uint32_t HighestOctet = 255;

[[noreturn]] void refuse(std::string_view text, const std::string& why)
{
    throw UsageError(inQuotes(text) + " " + why);
}

[[noreturn]] void refuseForm(std::string_view text)
{
    refuse(text, "is no address (10.0.0.7), range (10.0.0.1-10.0.0.99 or 10.0.0-3.1-254) or network (10.0.0.0/24)");
}

[[noreturn]] void refuseCount(std::string_view text)
{
    refuse(text, "comes to more than " + std::to_string(MostRanges) + " ranges; a network (10.0.0.0/8) is one");
}

std::uint32_t addressOf(std::string_view part, std::string_view whole)
{
    const auto address = parseAddress(part);
    if (!address)
        refuseForm(whole);
    return *address;
}

/// A number without sign or superfluous zeros, of as many digits at most.
std::optional<std::uint32_t> numberOf(std::string_view part, std::size_t mostDigits)
{
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    const bool canonical = part.size() == 1 || (part.size() <= mostDigits && !part.starts_with('0'));
    if (error != std::errc() || end != part.data() + part.size() || !canonical)
        return std::nullopt;
    return number;
}

AddressRange networkOf(std::string_view text)
{
    const auto slash = text.find('/');
    const std::uint32_t address = addressOf(text.substr(0, slash), text);
    const auto prefix = numberOf(text.substr(slash + 1), 2);
    if (!prefix)
        refuseForm(text);
    if (*prefix > 32)
        refuse(text, "has a prefix of " + std::to_string(*prefix) + " bits; 0 to 32 are accepted");
    const std::uint32_t hostBits = *prefix == 32 ? 0 : LastAddress >> *prefix;
    return {address & ~hostBits, address | hostBits};
}

AddressRange rangeOf(std::string_view text)
{
    const auto hyphen = text.find('-');
    const std::uint32_t from = addressOf(text.substr(0, hyphen), text);
    const std::uint32_t to = addressOf(text.substr(hyphen + 1), text);
    if (to < from)
        refuse(text, "is reversed: its first address is above its last");
    return {from, to};
}

std::vector<std::string_view> splitAt(char separator, std::string_view text)
{
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    for (auto end = text.find(separator); end != std::string_view::npos; end = text.find(separator, begin)) {
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

/// The values that one octet runs over.
class Octet {
public:
    Octet(std::string_view text, std::string_view whole)
    {
        for (const std::string_view part : splitAt(',', text))
            values_.push_back(valuesOf(part, whole));
    }

    const AddressRanges& ranges() const { return values_; }
    bool isAll() const { return values_ == AddressRanges{{0, HighestOctet}}; }

    std::size_t count() const
    {
        std::size_t count = 0;
        for (const AddressRange& values : values_)
            count += values.to - values.from + 1;
        return count;
    }

private:
    static AddressRange valuesOf(std::string_view part, std::string_view whole)
    {
        const auto hyphen = part.find('-');
        const auto from = numberOf(part.substr(0, hyphen), 3);
        const auto to = hyphen == std::string_view::npos ? from : numberOf(part.substr(hyphen + 1), 3);
        if (!from || !to || *from > HighestOctet || *to > HighestOctet)
            refuseForm(whole);
        if (*to < *from)
            refuse(whole, "is reversed: " + std::to_string(*from) + " is above " + std::to_string(*to));
        return {*from, *to};
    }

    AddressRanges values_;
};

class Octets {
public:
    explicit Octets(std::string_view text)
    {
        for (const std::string_view part : splitAt('.', text))
            octets_.emplace_back(part, text);
        if (countRanges() > MostRanges)
            refuseCount(text);
    }

    AddressRanges ranges() const
    {
        AddressRanges result{{0, 0}};
        for (std::size_t i = 0; i < octets_.size(); ++i) {
            if (restIsAll(i))
                return withRanges(result, i);
            result = withValues(result, i);
        }
        return result;
    }

private:
    static std::uint32_t shiftOf(std::size_t index) { return static_cast<std::uint32_t>(24 - 8 * index); }

    /// Whether the octets after this one run over everything, so that they make no gaps.
    bool restIsAll(std::size_t index) const
    {
        return std::all_of(octets_.begin() + static_cast<std::ptrdiff_t>(index) + 1, octets_.end(),
                           [](const Octet& octet) { return octet.isAll(); });
    }

    /// Stops counting beyond the limit.
    std::size_t countRanges() const
    {
        std::size_t count = 1;
        for (std::size_t i = 0; count <= MostRanges && i < octets_.size(); ++i) {
            if (restIsAll(i))
                return count * octets_[i].ranges().size();
            count *= octets_[i].count();
        }
        return count;
    }

    AddressRanges withValues(const AddressRanges& prefixes, std::size_t index) const
    {
        AddressRanges result;
        for (const AddressRange& prefix : prefixes)
            for (const AddressRange& values : octets_[index].ranges())
                for (std::uint32_t value = values.from; value <= values.to; ++value) {
                    const std::uint32_t longer = prefix.from | value << shiftOf(index);
                    result.push_back({longer, longer});
                }
        return result;
    }

    AddressRanges withRanges(const AddressRanges& prefixes, std::size_t index) const
    {
        const std::uint32_t rest = (1U << shiftOf(index)) - 1;
        AddressRanges result;
        for (const AddressRange& prefix : prefixes)
            for (const AddressRange& values : octets_[index].ranges())
                result.push_back(
                    {prefix.from | values.from << shiftOf(index), prefix.from | values.to << shiftOf(index) | rest});
        return result;
    }

    std::vector<Octet> octets_;
};

/// The ranges as written, which may end at 255.255.255.255.
AddressRanges parseOne(std::string_view text)
{
    if (text.find('/') != std::string_view::npos)
        return {networkOf(text)};
    const auto dots = std::count(text.begin(), text.end(), '.');
    if (dots == 6)
        return {rangeOf(text)};
    if (dots != 3)
        refuseForm(text);
    return Octets(text).ranges();
}

/// The targets that commas join. A comma stands within a target while that lacks octets, and before a part without
/// dots.
std::vector<std::string_view> splitTargets(std::string_view text)
{
    std::vector<std::string_view> targets;
    std::ptrdiff_t dots = 0;
    std::size_t begin = 0;
    for (const std::string_view part : splitAt(',', text)) {
        const auto ownDots = std::count(part.begin(), part.end(), '.');
        const auto at = static_cast<std::size_t>(part.data() - text.data());
        if (dots >= 3 && ownDots > 0) {
            targets.push_back(text.substr(begin, at - 1 - begin));
            begin = at;
            dots = 0;
        }
        dots += ownDots;
    }
    targets.push_back(text.substr(begin));
    return targets;
}

void appendCutShort(const AddressRanges& ranges, AddressRanges& result)
{
    for (const AddressRange& range : ranges)
        if (range.from != LastAddress)
            result.push_back({range.from, std::min(range.to, LastAddress - 1)});
}

} // namespace

AddressRanges parseTargets(std::string_view text)
{
    AddressRanges result;
    for (const std::string_view target : splitTargets(text)) {
        const AddressRanges ranges = parseOne(target);
        if (std::none_of(ranges.begin(), ranges.end(), holdsProbedAddress))
            refuse(target, "holds no address to probe; addresses that end in .0 or .255 are never probed");
        appendCutShort(ranges, result);
        if (result.size() > MostRanges)
            refuseCount(text);
    }
    return result;
}

AddressRanges parseExcludes(std::string_view text)
{
    AddressRanges result;
    for (const std::string_view target : splitTargets(text)) {
        appendCutShort(parseOne(target), result);
        if (result.size() > MostRanges)
            refuseCount(text);
    }
    return result;
}

} // namespace Host
