#include "host/CsvField.h"

#include "host/DisplayText.h"

#include <algorithm>

namespace Host {

namespace {

bool looksLikeFormula(std::string_view text)
{
    return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

/// Line ends stay, as RFC 4180 allows them within quotes.
std::string withoutControls(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t lineEnd = text.find_first_of("\r\n");
        result += printable(text.substr(0, lineEnd));
        text.remove_prefix(std::min(lineEnd, text.size()));
        if (!text.empty()) {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

} // namespace

std::string csvField(std::string_view text)
{
    std::string field = (looksLikeFormula(text) ? "'" : "") + withoutControls(text);
    if (field.find_first_of("\",\r\n") == std::string::npos)
        return field;
    std::string result = "\"";
    for (const char character : field)
        result.append(character == '"' ? 2 : 1, character);
    return result + '"';
}

} // namespace Host
