/// Rows of text in aligned columns.
#pragma once

#include "host/TextStyle.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Host {

class Table {
public:
    /// `usefulWidths`, if given, is for each column the width below which it is cut only when cutting others does not
    /// help.
    explicit Table(const std::vector<std::string>& header, std::vector<std::size_t> usefulWidths = {});

    /// Adds a row of as many cells as the header has; they are made printable.
    void add(const std::vector<std::string>& cells);

    /// Lines with two blanks between columns and none at their ends; columns are as wide as their widest cell. Where a
    /// line would be wider than the style allows, the widest columns but the first are cut, none below its header or
    /// eight columns.
    std::string text(const TextStyle& style = {}) const;

private:
    std::vector<std::size_t> widthsWithin(std::size_t width) const;

    std::vector<std::vector<std::string>> rows_; // the header first
    std::vector<std::size_t> widths_;
    std::vector<std::size_t> usefulWidths_;
};

} // namespace Host
