/// Answers as JSON, and failures that are answered.
#pragma once

#include "host/PluginReply.h"
#include "host/console/HttpMessage.h"

#include <stdexcept>
#include <string>

namespace Host {

/// A request that is not carried out. The message is for people and repeats no secret.
class HttpError : public std::runtime_error {
public:
    /// `code` is for programs; `details` are further members of the answer's "error".
    HttpError(int status, std::string code, const std::string& message, JsonValue details = JsonValue::object());

    int status() const { return status_; }
    const std::string& code() const { return code_; }
    const JsonValue& details() const { return details_; }

private:
    int status_;
    std::string code_;
    JsonValue details_;
};

/// Something in the member `field` of the request's body is not accepted.
HttpError badInput(const std::string& field, const std::string& message);

/// There is nothing under the path.
HttpError notFound();

HttpResponse jsonResponse(const JsonValue& document, int status = 200);

/// {"error":{"code":…,"message":…,…}}
HttpResponse errorResponse(const HttpError& error);

/// What `HttpServer` is to answer to a request whose form is at fault.
HttpResponse refusalOf(int status);

/// Adds what tells browsers to run and show nothing but what comes from here.
HttpResponse withBrowserRules(HttpResponse response);

} // namespace Host
