#include "host/Table.h"

#include "host/DisplayText.h"

#include <algorithm>
#include <utility>

namespace Host {

Table::Table(std::vector<std::string> header) : widths_(header.size(), 0)
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

std::string Table::text() const
{
    std::string text;
    for (const auto& row : rows_) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += padded(row[i], widths_[i]) + "  ";
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

} // namespace Host
