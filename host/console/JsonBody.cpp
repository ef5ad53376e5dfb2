#include "host/console/JsonBody.h"

#include "host/BoundedJson.h"
#include "host/console/HttpReplies.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace Host {

namespace {

JsonValue objectOf(const std::string& text)
{
    try {
        JsonValue document = parseBoundedJson(text, "the request's body");
        if (document.is_object())
            return document;
    } catch (const JsonError& error) {
        throw HttpError(400, "badJson", error.what());
    }
    throw HttpError(400, "badJson", "the request's body is to be an object");
}

} // namespace

JsonBody::JsonBody(const std::string& text) : object_(objectOf(text)) {}

JsonBody::JsonBody(JsonValue object, std::string place, std::string field)
    : object_(std::move(object)), place_(std::move(place)), field_(std::move(field))
{}

std::optional<std::string> JsonBody::text(const char* key)
{
    const JsonValue* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    if (!value->is_string())
        refuse(key, "text");
    return value->get<std::string>();
}

bool JsonBody::flag(const char* key)
{
    const JsonValue* value = find(key);
    if (value != nullptr && !value->is_boolean())
        refuse(key, "true or false");
    return value != nullptr && value->get<bool>();
}

std::optional<int> JsonBody::integer(const char* key, int from, int to)
{
    const JsonValue* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    const bool fits = value->is_number_integer() && *value >= from && *value <= to;
    if (!fits)
        refuse(key, "a whole number from " + std::to_string(from) + " to " + std::to_string(to));
    return value->get<int>();
}

std::vector<JsonBody> JsonBody::objects(const char* key)
{
    std::vector<JsonBody> result;
    const JsonValue* value = find(key);
    if (value == nullptr)
        return result;
    if (!value->is_array())
        refuse(key, "a list");
    for (const JsonValue& element : *value) {
        if (!element.is_object())
            refuse(key, "a list of objects");
        result.emplace_back(element, std::string(key) + ' ' + std::to_string(result.size() + 1) + ": ", key);
    }
    return result;
}

void JsonBody::refuseOthers() const
{
    for (const auto& [key, value] : object_.items())
        if (std::find(asked_.begin(), asked_.end(), key) == asked_.end())
            throw badInput(field_, place_ + "there is a member that is not known");
}

const JsonValue* JsonBody::find(const char* key)
{
    asked_.emplace_back(key);
    const auto member = object_.find(key);
    return member == object_.end() || member->is_null() ? nullptr : &*member;
}

void JsonBody::refuse(const char* key, const std::string& expected) const
{
    throw badInput(field_.empty() ? key : field_, place_ + '"' + key + "\" is to be " + expected);
}

} // namespace Host
