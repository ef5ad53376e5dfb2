/// Requests and responses of HTTP as the routes see them.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Host {

/// Texts are as the client sent them; a field that it did not send is empty, one sent several times is joined by ", ".
struct HttpRequest {
    std::string method;
    std::string path;  ///< of the target, not decoded; begins with a slash
    std::string query; ///< what follows the question mark
    std::string host;
    std::string origin;
    std::string authorization;
    std::string contentType;
    std::string body;
    std::string client; ///< the address that it came from
};

struct HttpResponse {
    int status = 200;
    std::string contentType = "application/json"; ///< of a body that is not empty
    std::string body = {};
    std::vector<std::pair<std::string, std::string>> fields = {}; ///< further header fields

    /// If it is set, what the client gets in place of `body`: each call gives the next part, and one without anything
    /// is the end. Called by one thread at a time, and no more once it has thrown, which cuts the response short.
    std::function<std::string()> parts = {};
};

} // namespace Host
