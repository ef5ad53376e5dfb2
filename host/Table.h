/// Rows of text in aligned columns.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Host {

class Table {
public:
    explicit Table(std::vector<std::string> header);

    /// Adds a row of as many cells as the header has; they are made printable.
    void add(const std::vector<std::string>& cells);

    /// Lines with two blanks between columns and none at their ends; columns are as wide as their widest cell.
    std::string text() const;

private:
    std::vector<std::vector<std::string>> rows_; // the header first
    std::vector<std::size_t> widths_;
};

} // namespace Host
