#include "host/console/Times.h"

#include <array>

namespace Host {

namespace {

namespace chrono = std::chrono;

std::string padded(unsigned value, std::size_t digits)
{
    std::string text = std::to_string(value);
    text.insert(0, digits - std::min(digits, text.size()), '0');
    return text;
}

struct Fields {
    explicit Fields(chrono::system_clock::time_point time)
        : day(chrono::floor<chrono::days>(time)), date(day), clock(chrono::floor<chrono::seconds>(time) - day)
    {}

    std::string year() const { return padded(static_cast<unsigned>(static_cast<int>(date.year())), 4); }

    std::string time() const
    {
        return padded(static_cast<unsigned>(clock.hours().count()), 2) + ':' +
               padded(static_cast<unsigned>(clock.minutes().count()), 2) + ':' +
               padded(static_cast<unsigned>(clock.seconds().count()), 2);
    }

    chrono::sys_days day;
    chrono::year_month_day date;
    chrono::hh_mm_ss<chrono::seconds> clock;
};

} // namespace

std::string isoTime(chrono::system_clock::time_point time)
{
    const Fields fields(time);
    return fields.year() + '-' + padded(static_cast<unsigned>(fields.date.month()), 2) + '-' +
           padded(static_cast<unsigned>(fields.date.day()), 2) + 'T' + fields.time() + 'Z';
}

std::string httpDate(chrono::system_clock::time_point time)
{
    static constexpr std::array days = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr std::array months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const Fields fields(time);
    const std::string month = months.at(static_cast<unsigned>(fields.date.month()) - 1);
    return std::string(days.at(chrono::weekday(fields.day).c_encoding())) + ", " +
           padded(static_cast<unsigned>(fields.date.day()), 2) + ' ' + month + ' ' + fields.year() + ' ' +
           fields.time() + " GMT";
}

} // namespace Host
