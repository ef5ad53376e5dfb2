#include "host/TargetPlan.h"

#include "host/Errors.h"
#include "host/Targets.h"
#include "host/TextFile.h"

#include <algorithm>
#include <istream>
#include <string_view>

namespace Host {

namespace {

constexpr const char* LocalTarget = "@local";
constexpr const char* StandardInput = "-";

using Parse = AddressRanges (*)(std::string_view text);

[[noreturn]] void refuseCount(std::size_t count)
{
    throw UsageError("the targets come to " + std::to_string(count) + " separate ranges of addresses; at most " +
                     std::to_string(MostRanges) + " are accepted");
}

/// Gathers the ranges of one side, targets or excludes.
class RangeReader {
public:
    RangeReader(const TargetSources& sources, bool& inputIsRead, Parse parse)
        : sources_(sources), inputIsRead_(inputIsRead), parse_(parse)
    {}

    void take(const std::string& text)
    {
        if (text == LocalTarget)
            append(localNetworks());
        else
            append(parse_(text));
    }

    void takeFile(const std::string& path, const char* option)
    {
        if (path == StandardInput)
            takeInput();
        else
            takeList(readTextFile(path, option), path);
    }

    void takeInput()
    {
        if (inputIsRead_)
            throw UsageError("standard input can be read only once");
        inputIsRead_ = true;
        takeList(readText(sources_.standardInput, "standard input"), "standard input");
    }

    AddressRanges ranges() const { return merged(ranges_); }

private:
    AddressRanges localNetworks() const
    {
        AddressRanges networks = sources_.localNetworks();
        std::erase_if(networks, [](const AddressRange& network) { return !holdsProbedAddress(network); });
        if (networks.empty())
            throw UsageError("@local: this machine is connected to no IPv4 network");
        for (AddressRange& network : networks)
            network.to = std::min(network.to, LastAddress - 1);
        return networks;
    }

    void takeList(const std::string& text, const std::string& name)
    {
        forEachLine(text, [&](std::string_view line, std::size_t number) {
            try {
                takeWords(line.substr(0, line.find('#')));
            } catch (const UsageError& error) {
                throw UsageError(name + ':' + std::to_string(number) + ": " + error.what());
            }
        });
    }

    void takeWords(std::string_view line)
    {
        constexpr std::string_view blanks = " \t\r";
        for (auto begin = line.find_first_not_of(blanks); begin != std::string_view::npos;
             begin = line.find_first_not_of(blanks)) {
            line.remove_prefix(begin);
            const auto end = std::min(line.find_first_of(blanks), line.size());
            take(std::string(line.substr(0, end)));
            line.remove_prefix(end);
        }
    }

    void append(const AddressRanges& ranges)
    {
        ranges_.insert(ranges_.end(), ranges.begin(), ranges.end());
        if (ranges_.size() <= 2 * MostRanges)
            return;
        ranges_ = merged(std::move(ranges_));
        if (ranges_.size() > MostRanges)
            refuseCount(ranges_.size());
    }

    const TargetSources& sources_;
    bool& inputIsRead_;
    Parse parse_;
    AddressRanges ranges_;
};

AddressRanges targetsOf(const TargetArguments& arguments, RangeReader reader)
{
    for (const std::string& target : arguments.targets) {
        if (target == StandardInput)
            reader.takeInput();
        else
            reader.take(target);
    }
    for (const std::string& file : arguments.files)
        reader.takeFile(file, "--target-file");
    AddressRanges ranges = reader.ranges();
    if (ranges.empty())
        throw UsageError("the lists hold no target");
    return ranges;
}

AddressRanges excludesOf(const TargetArguments& arguments, RangeReader reader)
{
    for (const std::string& exclude : arguments.excludes)
        reader.take(exclude);
    for (const std::string& file : arguments.excludeFiles)
        reader.takeFile(file, "--exclude-file");
    return reader.ranges();
}

} // namespace

AddressRanges planTargets(const TargetArguments& arguments, const TargetSources& sources)
{
    if (arguments.targets.empty() && arguments.files.empty())
        throw UsageError("discover needs a TARGET: an address, a range, a network, @local, or --target-file FILE");
    bool inputIsRead = false;
    const AddressRanges targets = targetsOf(arguments, {sources, inputIsRead, parseTargets});
    const AddressRanges excludes = excludesOf(arguments, {sources, inputIsRead, parseExcludes});
    AddressRanges plan = bridged(withoutRanges(targets, excludes));
    if (plan.size() > MostRanges)
        refuseCount(plan.size());
    return plan;
}

} // namespace Host
