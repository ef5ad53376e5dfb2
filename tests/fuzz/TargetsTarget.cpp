// Addresses to sweep as people write them: what is accepted is ranges within bounds, and reads the same again.
#include "fuzz/Target.h"
#include "host/Errors.h"
#include "host/Targets.h"

namespace {

using Host::AddressRange;
using Host::AddressRanges;

void requireBounds(const AddressRanges& ranges)
{
    Fuzz::require(ranges.size() <= Host::MostRanges, "there is a limit to the ranges");
    for (const AddressRange& range : ranges) {
        Fuzz::require(range.from <= range.to, "a range is not reversed");
        Fuzz::require(range.to < Host::LastAddress, "a range ends before 255.255.255.255");
    }
}

std::string written(const AddressRanges& ranges)
{
    std::string text;
    for (const AddressRange& range : ranges)
        text.append(text.empty() ? "" : ",").append(Host::rangeText(range));
    return text;
}

bool readsAs(AddressRanges (*parse)(std::string_view), std::string_view text)
{
    try {
        const AddressRanges ranges = parse(text);
        requireBounds(ranges);
        Fuzz::require(ranges.empty() || parse(written(ranges)) == ranges, "ranges written out are the same ranges");
        return true;
    } catch (const Host::UsageError& error) {
        Fuzz::require(*error.what() != '\0', "a refusal has words");
        return false;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = Fuzz::textOf(data, size);
    const bool areTargets = readsAs(Host::parseTargets, text);
    Fuzz::require(readsAs(Host::parseExcludes, text) || !areTargets, "all targets may be excluded");
    if (const auto address = Host::parseAddress(text))
        Fuzz::require(Host::addressText(*address) == text, "an address has one way to be written");
    return 0;
}
