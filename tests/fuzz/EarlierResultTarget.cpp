// An earlier result, as a file holds it, and comparisons with it.
#include "fuzz/Target.h"
#include "host/ComparisonFormats.h"
#include "host/Errors.h"

#include <algorithm>

namespace {

using Host::Comparison;
using Host::RunResult;

bool isPlain(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c == '\n' || (c >= 0x20 && c != 0x7F); });
}

void requireSound(const Comparison& comparison, std::size_t before, std::size_t now)
{
    const std::size_t differing = std::max(comparison.moved.size(), comparison.changed.size());
    Fuzz::require(comparison.added.size() + comparison.same + differing <= now, "no printer is counted twice");
    Fuzz::require(comparison.gone.size() + comparison.same + differing <= before, "no earlier one is either");
    Fuzz::require(isPlain(Host::comparisonText(comparison, "file", {})), "lines hold nothing that steers a terminal");
    Fuzz::require(!Host::comparisonDocument(comparison).dump().empty(), "a comparison is a document");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const auto earlier = Host::parseEarlierResult(std::string(Fuzz::textOf(data, size)), "file");
        const auto half = earlier.printers.begin() + static_cast<std::ptrdiff_t>(earlier.printers.size() / 2);
        RunResult now;
        now.printers = {half, earlier.printers.end()};
        const Host::AddressRanges everywhere = {{0, Host::LastAddress}};
        requireSound(Host::compare(earlier.printers, now, everywhere), earlier.printers.size(), now.printers.size());
        requireSound(Host::compare({earlier.printers.begin(), half}, now, everywhere),
                     static_cast<std::size_t>(half - earlier.printers.begin()), now.printers.size());
    } catch (const Host::UsageError& error) {
        Fuzz::require(std::string_view(error.what()).starts_with("file "), "a refusal names the file");
    }
    return 0;
}
