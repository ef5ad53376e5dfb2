#include "host/console/HttpQuery.h"

#include "host/console/HttpReplies.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace Host {

std::optional<std::string> queryText(const std::string& query, const std::string& name)
{
    for (std::string_view rest = query; !rest.empty();) {
        const std::size_t end = std::min(rest.find('&'), rest.size());
        const std::string_view part = rest.substr(0, end);
        const std::size_t equals = std::min(part.find('='), part.size());
        if (part.substr(0, equals) == name)
            return std::string(part.substr(std::min(equals + 1, part.size())));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return std::nullopt;
}

std::size_t queryNumber(const std::string& query, const std::string& name)
{
    const auto text = queryText(query, name);
    if (!text)
        return 0;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    if (error != std::errc() || end != text->data() + text->size())
        throw badInput(name, "\"" + name + "\" is to be a number from 0 on");
    return number;
}

} // namespace Host
