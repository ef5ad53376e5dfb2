/// How text for people is laid out where it is shown.
#pragma once

#include <cstddef>
#include <limits>
#include <string>

namespace Host {

struct TextStyle {
    std::size_t width = std::numeric_limits<std::size_t>::max(); ///< columns that a line of a table may take
    bool colours = false;
};

enum class Emphasis { Heading, Good, Bad, Notable };

/// `text` in the colour of an emphasis, if there are to be colours.
std::string emphasised(const std::string& text, Emphasis emphasis, const TextStyle& style);

/// What suits standard output: the width of a terminal, and colours unless it shows none or NO_COLOR is set.
TextStyle outputStyle();

} // namespace Host
