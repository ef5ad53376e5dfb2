#include "host/console/HttpReplies.h"

#include <utility>

namespace Host {

HttpError::HttpError(int status, std::string code, const std::string& message, JsonValue details)
    : std::runtime_error(message), status_(status), code_(std::move(code)), details_(std::move(details))
{}

HttpError badInput(const std::string& field, const std::string& message)
{
    return {400, "badInput", message, {{"field", field}}};
}

HttpError notFound()
{
    return {404, "notFound", "there is nothing here by that name"};
}

HttpResponse jsonResponse(const JsonValue& document, int status)
{
    return {.status = status, .body = document.dump(-1, ' ', false, JsonValue::error_handler_t::replace) + '\n'};
}

HttpResponse errorResponse(const HttpError& error)
{
    JsonValue members = {{"code", error.code()}, {"message", error.what()}};
    members.update(error.details());
    return jsonResponse({{"error", members}}, error.status());
}

HttpResponse refusalOf(int status)
{
    switch (status) {
    case 413:
        return errorResponse({status, "tooLarge", "the request is larger than is accepted"});
    case 431:
        return errorResponse({status, "tooLarge", "the head of the request is larger than is accepted"});
    case 500:
        return errorResponse({status, "internal", "the request could not be carried out"});
    case 503:
        return errorResponse({status, "busy", "too much is under way; try again soon"});
    case 505:
        return errorResponse({status, "badRequest", "this takes HTTP/1.1"});
    default:
        return errorResponse({status, "badRequest", "this is no proper HTTP request"});
    }
}

HttpResponse withBrowserRules(HttpResponse response)
{
    for (const auto& [name, value] :
         {std::pair{"Content-Security-Policy",
                    "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self'; "
                    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
          {"X-Content-Type-Options", "nosniff"},
          {"X-Frame-Options", "DENY"},
          {"Referrer-Policy", "no-referrer"},
          {"Cross-Origin-Opener-Policy", "same-origin"},
          {"Cross-Origin-Resource-Policy", "same-origin"}})
        response.fields.emplace_back(name, value);
    return response;
}

} // namespace Host
