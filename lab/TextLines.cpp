#include "lab/TextLines.h"

#include "lab/Error.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace Lab {
namespace {

constexpr std::size_t longestQuote = 60;

/// The line for a message: printable, and not longer than a terminal's line.
std::string quoted(std::string_view line)
{
    std::string quote(line.substr(0, longestQuote));
    std::replace_if(
        quote.begin(), quote.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return '"' + quote + (line.size() > longestQuote ? "...\"" : "\"");
}

} // namespace

void forEachLine(const std::string& file, std::string_view text,
                 const std::function<void(std::string_view line, std::size_t number)>& read)
{
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.empty())
            continue;
        try {
            read(line, number);
        } catch (const Error& error) {
            throw Error(file + ":" + std::to_string(number) + ": " + error.what() + ", found " + quoted(line));
        }
    }
}

std::filesystem::path pathOf(const std::string& text)
{
    return std::u8string(text.begin(),
                         text.end()); // a plain string would be taken for another encoding on some systems
}

std::string readFile(const std::string& file)
{
    std::ifstream in(pathOf(file), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.is_open() || in.bad())
        throw Error(file + ": expected a file that can be read");
    return text;
}

} // namespace Lab
