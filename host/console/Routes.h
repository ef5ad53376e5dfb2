/// Which action answers which request.
#pragma once

#include "host/console/HttpMessage.h"

#include <functional>
#include <string>
#include <vector>

namespace Host {

/// Filled once; then any thread may ask.
class Routes {
public:
    /// `names` are the parts of the path that stand where the pattern has asterisks.
    using Action = std::function<HttpResponse(const HttpRequest& request, const std::vector<std::string>& names)>;

    /// The parts of a pattern are separated by slashes: "/api/runs/*/stop".
    void add(const std::string& method, const std::string& pattern, Action action);

    /// Throws `HttpError` with status 404 or 405 when there is no such action, and what the action throws. HEAD is
    /// answered as GET.
    HttpResponse answer(const HttpRequest& request) const;

private:
    struct Route {
        std::string method;
        std::vector<std::string> pattern;
        Action action;
    };

    std::vector<Route> routes_;
};

} // namespace Host
