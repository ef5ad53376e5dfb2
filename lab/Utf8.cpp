#include "lab/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace Lab {
namespace {

std::uint8_t byteAt(std::string_view text, std::size_t index)
{
    return static_cast<std::uint8_t>(text[index]);
}

/// How many bytes a character takes that begins with `lead`; 0 for a byte that begins none.
std::size_t characterSize(std::uint8_t lead)
{
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// The second byte is bounded more closely where the lead byte could otherwise begin an overlong form, a surrogate
/// or a number beyond the last character.
bool isSecondByte(std::uint8_t lead, std::uint8_t second)
{
    const std::uint8_t from = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const std::uint8_t to = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return second >= from && second <= to;
}

/// The size of the valid character that `text` begins with; 0 when there is none.
std::size_t leadingCharacter(std::string_view text)
{
    const std::size_t size = characterSize(byteAt(text, 0));
    if (size == 0 || size > text.size() || (size > 1 && !isSecondByte(byteAt(text, 0), byteAt(text, 1))))
        return 0;
    const std::string_view tail = text.substr(std::min<std::size_t>(2, size), size - std::min<std::size_t>(2, size));
    return std::all_of(tail.begin(), tail.end(), [](char c) { return (c & 0xC0) == 0x80; }) ? size : 0;
}

} // namespace

std::string toUtf8(std::string_view text)
{
    std::string repaired;
    while (!text.empty()) {
        const std::size_t size = leadingCharacter(text);
        if (size == 0) {
            const std::uint8_t byte = byteAt(text, 0);
            repaired.push_back(static_cast<char>(0xC0U | (byte >> 6)));
            repaired.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
        } else {
            repaired.append(text.substr(0, size));
        }
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return repaired;
}

} // namespace Lab
