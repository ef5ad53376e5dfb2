#include "host/Table.h"

#include "host/DisplayText.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

namespace Host {

namespace {

constexpr const char* Gap = "  ";
constexpr std::size_t NarrowestCut = 8;

/// Takes columns off the widest but the first until all fit into `sum` or are at their least.
void narrow(std::vector<std::size_t>& widths, const std::vector<std::size_t>& least, std::size_t sum)
{
    for (std::size_t used = std::accumulate(widths.begin(), widths.end(), std::size_t{0}); used > sum; --used) {
        std::size_t widest = 0;
        for (std::size_t i = 1; i < widths.size(); ++i)
            if (widths[i] > least[i] && (widest == 0 || widths[i] > widths[widest]))
                widest = i;
        if (widest == 0)
            return;
        --widths[widest];
    }
}

} // namespace

Table::Table(const std::vector<std::string>& header, std::vector<std::size_t> usefulWidths)
    : widths_(header.size(), 0), usefulWidths_(std::move(usefulWidths))
{
    add(header);
}

void Table::add(const std::vector<std::string>& cells)
{
    std::vector<std::string> row;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        row.push_back(printable(cells.at(i)));
        widths_[i] = std::max(widths_[i], displayWidth(row.back()));
    }
    rows_.push_back(std::move(row));
}

std::string Table::text(const TextStyle& style) const
{
    const std::vector<std::size_t> widths = widthsWithin(style.width);
    std::string text;
    for (const auto& row : rows_) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += padded(shortened(row[i], widths[i]), widths[i]) + Gap;
        line.erase(line.find_last_not_of(' ') + 1);
        text += (&row == &rows_.front() ? emphasised(line, Emphasis::Heading, style) : line) + '\n';
    }
    return text;
}

std::vector<std::size_t> Table::widthsWithin(std::size_t width) const
{
    std::vector<std::size_t> least;
    for (const std::string& heading : rows_.front())
        least.push_back(std::max(displayWidth(heading), NarrowestCut));
    const std::vector<std::size_t>& useful = usefulWidths_.empty() ? least : usefulWidths_;
    std::vector<std::size_t> widths = widths_;
    const std::size_t gaps = (widths.size() - 1) * std::strlen(Gap);
    narrow(widths, useful, width - std::min(gaps, width));
    narrow(widths, least, width - std::min(gaps, width));
    return widths;
}

} // namespace Host
