#include "host/PluginReply.h"

#include "host/Errors.h"

namespace Host {

namespace {

/// The text of a member; empty when it is absent or no text.
std::string textOf(const JsonValue& object, const char* key)
{
    const auto member = object.find(key);
    return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

} // namespace

JsonValue parseReply(const std::string& reply)
{
    JsonValue document = JsonValue::parse(reply, nullptr, false);
    if (document.is_discarded())
        throw Failure("the plug-in's reply is not JSON");
    return document;
}

std::optional<PluginError> errorOf(const JsonValue& reply)
{
    for (const char* key : {"code", "message", "data", "operation"})
        if (!reply.is_object() || !reply.contains(key))
            return std::nullopt;
    return PluginError{textOf(reply, "code"), textOf(reply, "message")};
}

void requireStarted(const std::string& reply)
{
    const JsonValue document = parseReply(reply);
    if (!document.is_object())
        throw Failure("the plug-in's reply to its configuration is not an object");
    if (const std::string error = textOf(document, "error"); !error.empty())
        throw Failure("the plug-in refused its configuration: " + error);
    const JsonValue services = document.value("services", JsonValue::array());
    for (const JsonValue& service : services)
        if (textOf(service, "state") != "started")
            throw Failure("the service " + textOf(service, "reference") +
                          " did not start: " + textOf(service, "error"));
}

} // namespace Host
