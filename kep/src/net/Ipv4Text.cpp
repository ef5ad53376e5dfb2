#include "Kep/Net.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace Kep::Net {
namespace {

// Takes the decimal number of one octet off the front of `text`: 1 to 3 digits, at most 255, no superfluous zero.
bool takeOctet(std::string_view& text, unsigned long& octet)
{
    std::size_t digits = 0;
    octet = 0;
    while (digits < text.size() && digits < 3 && text[digits] >= '0' && text[digits] <= '9') {
        octet = octet * 10 + static_cast<unsigned long>(text[digits] - '0');
        ++digits;
    }
    if (digits == 0 || octet > 255 || (digits > 1 && text.front() == '0')) {
        return false;
    }
    text.remove_prefix(digits);
    return true;
}

bool takeDot(std::string_view& text)
{
    if (text.empty() || text.front() != '.') {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

} // namespace

bool parseIpAddress(std::string_view text, unsigned long& address)
{
    unsigned long value = 0;
    for (int position = 0; position < 4; ++position) {
        unsigned long octet = 0;
        if ((position > 0 && !takeDot(text)) || !takeOctet(text, octet)) {
            return false;
        }
        value = value << 8 | octet;
    }
    if (!text.empty()) {
        return false;
    }
    address = value;
    return true;
}

std::string formatIpAddress(std::uint32_t address)
{
    std::array<char, sizeof "255.255.255.255"> text{};
    char* end = text.data();
    for (int shift = 24; shift >= 0; shift -= 8) {
        end = std::to_chars(end, text.data() + text.size(), address >> shift & 0xFFU).ptr;
        *end++ = '.';
    }
    return {text.data(), end - 1};
}

} // namespace Kep::Net
