#include "host/DisplayText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <span>

namespace Host {

namespace {

constexpr std::size_t LongestQuote = 80;

struct CharacterRange {
    char32_t first;
    char32_t last;
};

/// Sorted. Marks that are drawn over the character before them.
constexpr CharacterRange Combining[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F}, {0x0670, 0x0670},
    {0x06D6, 0x06DC}, {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
    {0x200C, 0x200D}, {0x20D0, 0x20FF}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
};

/// Sorted. Characters two columns wide: East Asian scripts, full-width forms, pictographs.
constexpr CharacterRange Wide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97C},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

/// Sorted. Characters that show nothing but change how the rest is shown.
constexpr CharacterRange Formatting[] = {
    {0x00AD, 0x00AD}, {0x061C, 0x061C}, {0x200B, 0x200B}, {0x200E, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF},
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
    if (isIn(Combining, code))
        return 0;
    return isIn(Wide, code) ? 2 : 1;
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

} // namespace Host
