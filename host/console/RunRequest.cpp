#include "host/console/RunRequest.h"

#include "host/Credentials.h"
#include "host/Errors.h"
#include "host/console/HttpReplies.h"

#include <utility>

namespace Host {

namespace {

constexpr std::size_t LongestName = 200; // bytes

/// How the members are called in messages, which begin with `place`.
CredentialNames namesAt(const std::string& place)
{
    return {.place = place,
            .version2 = "version 2c",
            .version3 = "version 3",
            .user = "\"user\"",
            .authProtocol = "\"authProtocol\"",
            .authPassword = "\"authPassword\"",
            .privProtocol = "\"privProtocol\"",
            .privPassword = "\"privPassword\""};
}

/// A field that is left empty in a form counts as none; only the community may be empty.
Credentials credentialsOf(JsonBody& body)
{
    Credentials result;
    const auto take = [&](std::optional<Given> Credentials::*member, const char* key) {
        if (auto value = body.text(key); value && (!value->empty() || member == &Credentials::community))
            result.*member = Given{std::move(*value), key};
    };
    take(&Credentials::version, "version");
    take(&Credentials::community, "community");
    take(&Credentials::user, "user");
    take(&Credentials::level, "level");
    take(&Credentials::authProtocol, "authProtocol");
    take(&Credentials::authPassword, "authPassword");
    take(&Credentials::privProtocol, "privProtocol");
    take(&Credentials::privPassword, "privPassword");
    take(&Credentials::context, "context");
    body.refuseOthers();
    return result;
}

std::string labelOf(const JsonValue& profile)
{
    const int version = profile.at("snmpVersion");
    if (version == 3)
        return "v3 user " + profile.at("usm").get<std::string>();
    return version == 2 ? "v2c" : "v1";
}

void readCredentials(JsonBody& body, RunRequest& request)
{
    std::vector<JsonBody> all = body.objects("credentials");
    if (all.empty())
        all.emplace_back(JsonValue::object(), "", "credentials");
    if (all.size() > MostCredentialsOfRun)
        throw badInput("credentials", "at most " + std::to_string(MostCredentialsOfRun) + " credentials are accepted");
    const std::string place = all.size() > 1 ? "credentials " : "";
    for (JsonBody& each : all) {
        const std::string number = place.empty() ? "" : place + std::to_string(request.profiles.size() + 1) + ": ";
        try {
            request.profiles.push_back(snmpProfile(credentialsOf(each), {}, namesAt(number), request.port));
        } catch (const UsageError& error) {
            throw badInput("credentials", error.what());
        }
        request.credentials.push_back(labelOf(request.profiles.back()));
    }
}

} // namespace

RunRequest readRunRequest(JsonBody& body, const LocalNetworks& localNetworks)
{
    RunRequest request;
    request.name = body.text("name").value_or("");
    if (request.name.size() > LongestName)
        throw badInput("name", "a name has at most " + std::to_string(LongestName) + " bytes");
    request.targets = body.text("targets").value_or("");
    request.exclude = body.text("exclude").value_or("");
    request.port = body.integer("port", 1, 65535).value_or(SnmpPort);
    request.confirmed = body.flag("confirmed");
    request.ranges = planOf(request.targets, request.exclude, localNetworks);
    request.addresses = countProbed(request.ranges);
    readCredentials(body, request);
    return request;
}

void requireConfirmed(const RunRequest& request)
{
    if (request.addresses >= ConfirmFrom && !request.confirmed)
        throw HttpError(409, "confirm",
                        "this probes " + std::to_string(request.addresses) + " addresses; confirm that it is meant",
                        {{"addresses", request.addresses}});
}

} // namespace Host
