#include "host/history/Keys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace Host {

namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;

constexpr std::size_t Digits = 15; // enough for 30,000 years

} // namespace

std::string placeOf(system_clock::time_point time, const std::string& id)
{
    std::array<char, 32> digits{};
    const auto count = std::chrono::floor<milliseconds>(time.time_since_epoch()).count();
    std::snprintf(digits.data(), digits.size(), "%015lld", static_cast<long long>(count));
    return digits.data() + ('-' + id);
}

bool isPlace(const std::string& place)
{
    return place.size() > Digits + 1 && place[Digits] == '-' &&
           std::all_of(place.begin(), place.begin() + Digits, [](char digit) { return digit >= '0' && digit <= '9'; });
}

system_clock::time_point timeOf(const std::string& place)
{
    return system_clock::time_point(milliseconds(std::stoll(place.substr(0, Digits))));
}

std::string idOf(const std::string& place)
{
    return place.substr(Digits + 1);
}

std::string textOf(const JsonValue& document)
{
    return document.dump(-1, ' ', false, JsonValue::error_handler_t::replace);
}

} // namespace Host
