#include "documents/IpRange.h"

#include "Kep/Net.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace PrinterDiscoveryPlugin {
namespace {

std::uint32_t parseBound(const std::string& text)
{
    unsigned long address = 0;
    if (!Kep::Net::parseIpAddress(std::string_view(text).substr(0, text.find('\0')), address))
        return 0;
    return static_cast<std::uint32_t>(address);
}

std::vector<IpRange> parseRanges(const std::vector<IpRangeText>& texts)
{
    std::vector<IpRange> ranges;
    ranges.reserve(texts.size());
    for (const IpRangeText& text : texts)
        ranges.push_back(parseRange(text));
    return ranges;
}

/// One pass over two normalised lists, neither empty, that yields the first less the second.
class Subtraction {
public:
    Subtraction(const std::vector<IpRange>& include, const std::vector<IpRange>& exclude)
        : include_(include), exclude_(exclude), current_(include.front())
    {}

    std::vector<IpRange> run()
    {
        while (nextInclude_ <= include_.size())
            step();
        return std::move(result_);
    }

private:
    void step()
    {
        const IpRange& excluded = exclude_[excludeIndex_];
        if (current_.to < excluded.from) {
            result_.push_back(current_);
            advanceInclude();
        } else if (excluded.to < current_.from) {
            advanceExclude();
        } else {
            cut(excluded);
        }
    }

    /// Takes `excluded` out of the current range, which it overlaps.
    void cut(const IpRange& excluded)
    {
        if (current_.to > excluded.to) {
            if (current_.from < excluded.from)
                result_.push_back({current_.from, excluded.from - 1});
            current_.from = excluded.to + 1;
        } else if (current_.from < excluded.from) {
            current_.to = excluded.from - 1;
        } else {
            advanceInclude();
        }
    }

    void advanceInclude()
    {
        if (nextInclude_ < include_.size())
            current_ = include_[nextInclude_];
        ++nextInclude_;
    }

    void advanceExclude()
    {
        if (++excludeIndex_ < exclude_.size())
            return;
        result_.push_back(current_);
        result_.insert(result_.end(), include_.begin() + static_cast<std::ptrdiff_t>(nextInclude_), include_.end());
        nextInclude_ = include_.size() + 1;
    }

    const std::vector<IpRange>& include_;
    const std::vector<IpRange>& exclude_;
    IpRange current_; // what is left of the include range that precedes `nextInclude_`
    std::size_t nextInclude_ = 1;
    std::size_t excludeIndex_ = 0;
    std::vector<IpRange> result_;
};

std::uint32_t countInRange(const IpRange& range)
{
    const std::uint32_t low = std::min(range.from, range.to);
    const std::uint32_t high = std::max(range.from, range.to);
    std::uint32_t count = high - low + 1 - 2 * ((high >> 8) - (low >> 8));
    if ((low & 0xff) == 0)
        --count;
    if ((high & 0xff) == 0xff)
        --count;
    return count;
}

} // namespace

IpRange parseRange(const IpRangeText& text)
{
    return {parseBound(text.from), parseBound(text.to)};
}

std::vector<IpRange> normalizeRanges(std::vector<IpRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const IpRange& a, const IpRange& b) { return a.from < b.from; });
    std::vector<IpRange> merged;
    for (const IpRange& range : ranges) {
        if (merged.empty() || merged.back().to < range.from)
            merged.push_back(range);
        else
            merged.back().to = std::max(merged.back().to, range.to);
    }
    return merged;
}

std::vector<IpRange> subtractRanges(std::vector<IpRange> include, std::vector<IpRange> exclude)
{
    include = normalizeRanges(std::move(include));
    exclude = normalizeRanges(std::move(exclude));
    if (include.empty() || exclude.empty())
        return include;
    return Subtraction(include, exclude).run();
}

std::uint32_t countProbeAddresses(const std::vector<IpRange>& ranges)
{
    std::uint32_t count = 0;
    for (const IpRange& range : ranges)
        count += countInRange(range);
    return count;
}

std::uint32_t buildProbeRanges(const std::vector<IpRangeText>& include, const std::vector<IpRangeText>& exclude,
                               std::vector<IpRange>& ranges)
{
    ranges = subtractRanges(parseRanges(include), parseRanges(exclude));
    return countProbeAddresses(ranges);
}

} // namespace PrinterDiscoveryPlugin
