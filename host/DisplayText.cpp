#include "host/DisplayText.h"

#include "host/CharacterWidths.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <span>

namespace Host {

namespace {

constexpr std::size_t LongestQuote = 80;

/// Sorted. Characters that show nothing but change how the rest is shown.
constexpr CharacterRange Formatting[] = {
    {0x00AD, 0x00AD}, {0x061C, 0x061C}, {0x180E, 0x180E}, {0x200B, 0x200B}, {0x200E, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE0FFF},
};

bool isIn(std::span<const CharacterRange> ranges, char32_t character)
{
    const auto next = std::upper_bound(ranges.begin(), ranges.end(), character,
                                       [](char32_t c, const CharacterRange& range) { return c < range.first; });
    return next != ranges.begin() && character <= std::prev(next)->last;
}

struct Character {
    char32_t code;
    std::size_t bytes;
    bool valid; ///< else `code` is the byte
};

std::uint8_t byteAt(std::string_view text, std::size_t index)
{
    return static_cast<std::uint8_t>(text[index]);
}

std::size_t sequenceLength(std::uint8_t lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// The first character of a text that is not empty (RFC 3629, section 4).
Character firstCharacter(std::string_view text)
{
    static constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    const std::uint8_t lead = byteAt(text, 0);
    const Character invalid{lead, 1, false};
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || length > text.size())
        return invalid;
    char32_t code = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0) != 0x80)
            return invalid;
        code = (code << 6) | (byteAt(text, i) & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < smallest[length] || code > 0x10FFFF || surrogate)
        return invalid;
    return {code, length, true};
}

std::string escaped(const char* format, char32_t code)
{
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, static_cast<unsigned>(code));
    return buffer.data();
}

bool isControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code <= 0x9F);
}

std::size_t widthOf(char32_t code)
{
    if (isIn(combiningCharacters(), code))
        return 0;
    return isIn(wideCharacters(), code) ? 2 : 1;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        if (!character.valid || isControl(character.code))
            result += escaped("\\x%02X", character.code);
        else if (isIn(Formatting, character.code))
            result += escaped("\\u%04X", character.code);
        else
            result += text.substr(0, character.bytes);
        text.remove_prefix(character.bytes);
    }
    return result;
}

std::string inQuotes(std::string_view text)
{
    const bool cut = text.size() > LongestQuote;
    return '"' + printable(text.substr(0, LongestQuote)) + (cut ? "...\"" : "\"");
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string result;
    for (const std::string& text : texts)
        result += (result.empty() ? "" : " ") + text;
    return result;
}

std::size_t displayWidth(std::string_view text)
{
    std::size_t width = 0;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        width += widthOf(character.code);
        text.remove_prefix(character.bytes);
    }
    return width;
}

std::string padded(std::string text, std::size_t width)
{
    const std::size_t used = displayWidth(text);
    if (used < width)
        text.append(width - used, ' ');
    return text;
}

std::string shortened(const std::string& text, std::size_t width)
{
    if (displayWidth(text) <= width)
        return text;
    std::size_t used = 1; // for the ellipsis
    std::string_view rest = text;
    while (!rest.empty()) {
        const Character character = firstCharacter(rest);
        used += widthOf(character.code);
        if (used > width)
            break;
        rest.remove_prefix(character.bytes);
    }
    return text.substr(0, text.size() - rest.size()) + "…";
}

} // namespace Host
