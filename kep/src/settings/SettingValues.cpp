#include "settings/SettingValues.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace Kep {
namespace {

bool isDigit(char character) noexcept
{
    return character >= '0' && character <= '9';
}

// Reads all of `text`, which begins with a digit.
template <class Number, class... Format> std::optional<Number> readAll(std::string_view text, Format... format) noexcept
{
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, format...);
    const bool complete = result.ec == std::errc() && result.ptr == end && isDigit(text.front());
    return complete ? std::optional(number) : std::nullopt;
}

template <class Number> std::optional<Number> within(std::optional<Number> number, Number least, Number most) noexcept
{
    return number && *number >= least && *number <= most ? number : std::nullopt;
}

// Reads one number of an object identifier and the dot before it, and takes them off `rest`.
std::optional<std::uint32_t> takeArc(std::string_view& rest) noexcept
{
    if (rest.empty() || rest.front() != '.') {
        return std::nullopt;
    }
    const std::string_view arc = rest.substr(1, rest.find('.', 1) - 1);
    rest.remove_prefix(1 + arc.size());
    return readAll<std::uint32_t>(arc);
}

} // namespace

std::optional<int> readInteger(std::string_view text, int least, int most) noexcept
{
    return within(readAll<int>(text), least, most);
}

std::optional<double> readDecimal(std::string_view text, double least, double most) noexcept
{
    return within(readAll<double>(text, std::chars_format::fixed), least, most);
}

std::optional<bool> readSwitch(std::string_view text) noexcept
{
    if (text != "on" && text != "off") {
        return std::nullopt;
    }
    return text == "on";
}

bool isOid(std::string_view text) noexcept
{
    constexpr int mostArcs = 128;
    const auto first = takeArc(text);
    const auto second = takeArc(text);
    if (!first || !second || *first > 2 || (*first < 2 && *second > 39)) {
        return false;
    }
    for (int arcs = 2; !text.empty(); ++arcs) {
        if (arcs == mostArcs || !takeArc(text)) {
            return false;
        }
    }
    return true;
}

bool isOidList(std::string_view text) noexcept
{
    while (true) {
        const std::size_t end = text.find_first_of(",; ");
        if (!isOid(text.substr(0, end))) {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace Kep
