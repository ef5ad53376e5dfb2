#include "host/console/RequestGuard.h"

#include "host/Addresses.h"
#include "host/console/HttpReplies.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

namespace Host {

namespace {

constexpr std::uint16_t HttpPort = 80;
constexpr std::string_view AnyAddress = "0.0.0.0";

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

std::string_view withoutPort(std::string_view host)
{
    return host.substr(0, host.rfind(':'));
}

bool isProtected(std::string_view path)
{
    return path == "/metrics" || path == "/rpc" || path == "/api" || path.starts_with("/api/");
}

/// Whether the media type, whatever its parameters, is JSON.
bool isJson(std::string_view contentType)
{
    std::string type = lowered(contentType.substr(0, contentType.find(';')));
    type.erase(type.find_last_not_of(" \t") + 1);
    return type == "application/json";
}

} // namespace

RequestGuard::RequestGuard(Options options) : options_(std::move(options))
{
    std::vector<std::string> places = {options_.address};
    if (options_.address.starts_with("127."))
        places.emplace_back("localhost");
    for (const std::string& place : places) {
        hosts_.push_back(place + ':' + std::to_string(options_.port));
        if (options_.port == HttpPort)
            hosts_.push_back(place);
    }
    for (const std::string& name : options_.names)
        names_.push_back(lowered(name));
}

bool RequestGuard::isThisHost(const std::string& host) const
{
    const auto among = [](const std::vector<std::string>& list, std::string_view text) {
        return std::find(list.begin(), list.end(), text) != list.end();
    };
    const std::string text = lowered(host);
    const std::string_view place = withoutPort(text);
    if (among(hosts_, text) || among(names_, text) || among(names_, place))
        return true;
    // An address cannot have been made to lead here, as a name can.
    const bool ownPort = text == std::string(place) + ':' + std::to_string(options_.port) ||
                         (options_.port == HttpPort && text == place);
    return options_.address == AnyAddress && ownPort && parseAddress(place);
}

void RequestGuard::check(const HttpRequest& request) const
{
    if (!isThisHost(request.host))
        throw HttpError(421, "host", "this service does not go by the name in the Host field; --host-name allows it");
    const std::string origin = lowered(request.origin);
    const std::string host = lowered(request.host);
    if (!origin.empty() && origin != "http://" + host && origin != "https://" + host)
        throw HttpError(403, "origin", "requests from pages of other places are not answered");
    if (options_.token && isProtected(request.path) && !options_.token->allows(request.authorization))
        throw HttpError(401, "token", "this needs the token of the console");
    if (request.method == "POST" && !isJson(request.contentType))
        throw HttpError(415, "contentType", "a request's body is to be of the type application/json");
}

} // namespace Host
