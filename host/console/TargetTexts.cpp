#include "host/console/TargetTexts.h"

#include "host/Errors.h"
#include "host/TargetPlan.h"
#include "host/TextFile.h"
#include "host/console/HttpReplies.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

namespace Host {

namespace {

constexpr std::string_view LocalTarget = "@local";
constexpr std::size_t LongestTargets = 65536;

/// Commas join what belongs together (10.0.0.1,5,9), but not words that stand alone.
void splitWord(std::string_view word, std::vector<std::string>& words)
{
    std::string open;
    const auto close = [&] {
        if (!open.empty())
            words.push_back(std::exchange(open, {}));
    };
    while (!word.empty()) {
        const std::size_t comma = std::min(word.find(','), word.size());
        const std::string_view part = word.substr(0, comma);
        word.remove_prefix(std::min(comma + 1, word.size()));
        if (part == LocalTarget) {
            close();
            words.emplace_back(part);
        } else if (!part.empty()) {
            open += (open.empty() ? "" : ",") + std::string(part);
        }
    }
    close();
}

std::vector<std::string> wordsOf(const std::string& text, const char* field)
{
    if (text.size() > LongestTargets)
        throw badInput(field, "more than 64 KiB; the command line takes longer lists");
    std::vector<std::string> words;
    forEachLine(text, [&](std::string_view line, std::size_t) {
        std::istringstream parts{std::string(line.substr(0, line.find('#')))};
        for (std::string word; parts >> word;)
            splitWord(word, words);
    });
    if (std::find(words.begin(), words.end(), "-") != words.end())
        throw badInput(field, "a hyphen alone is no address");
    return words;
}

AddressRanges plan(const TargetArguments& arguments, const LocalNetworks& localNetworks, const char* field)
{
    std::istringstream nothing;
    try {
        return planTargets(arguments, {.standardInput = nothing, .localNetworks = localNetworks});
    } catch (const UsageError& error) {
        throw badInput(field, error.what());
    } catch (const Failure& error) { // of the look at the machine's interfaces
        throw badInput(field, error.what());
    }
}

} // namespace

AddressRanges planOf(const std::string& targets, const std::string& exclude, const LocalNetworks& localNetworks)
{
    TargetArguments arguments;
    arguments.targets = wordsOf(targets, "targets");
    if (arguments.targets.empty())
        throw badInput("targets", "an address, a range or a network is needed");
    AddressRanges ranges = plan(arguments, localNetworks, "targets");
    arguments.excludes = wordsOf(exclude, "exclude");
    if (!arguments.excludes.empty())
        ranges = plan(arguments, localNetworks, "exclude");
    const std::uint64_t addresses = countProbed(ranges);
    if (addresses == 0)
        throw badInput("exclude", "nothing is left to probe");
    if (addresses > MostAddresses)
        throw badInput("targets", std::to_string(addresses) + " addresses are too many for one run; at most " +
                                      std::to_string(MostAddresses) + " are accepted");
    return ranges;
}

} // namespace Host
