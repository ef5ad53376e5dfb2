#include "host/console/Routes.h"

#include "host/console/HttpReplies.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace Host {

namespace {

constexpr std::string_view Any = "*";

std::vector<std::string> partsOf(std::string_view path)
{
    std::vector<std::string> parts;
    while (!path.empty()) {
        path.remove_prefix(1); // the slash
        const std::size_t end = std::min(path.find('/'), path.size());
        parts.emplace_back(path.substr(0, end));
        path.remove_prefix(end);
    }
    return parts;
}

/// The parts that stand for asterisks; none when the path does not fit.
std::optional<std::vector<std::string>> match(const std::vector<std::string>& pattern,
                                              const std::vector<std::string>& path)
{
    std::vector<std::string> names;
    if (pattern.size() != path.size())
        return std::nullopt;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (pattern[i] == Any && !path[i].empty())
            names.push_back(path[i]);
        else if (pattern[i] != path[i])
            return std::nullopt;
    }
    return names;
}

} // namespace

void Routes::add(const std::string& method, const std::string& pattern, Action action)
{
    routes_.push_back({method, partsOf(pattern), std::move(action)});
}

HttpResponse Routes::answer(const HttpRequest& request) const
{
    const std::vector<std::string> path = partsOf(request.path);
    const std::string method = request.method == "HEAD" ? "GET" : request.method;
    std::string allowed;
    for (const Route& route : routes_) {
        const auto names = match(route.pattern, path);
        if (names && route.method == method)
            return route.action(request, *names);
        if (names)
            allowed += (allowed.empty() ? "" : ", ") + route.method;
    }
    if (allowed.empty())
        throw notFound();
    HttpResponse response = errorResponse({405, "method", "this path takes other methods: " + allowed});
    response.fields.emplace_back("Allow", allowed);
    return response;
}

} // namespace Host
