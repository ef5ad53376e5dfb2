#include "host/BoundedJson.h"

namespace Host {

namespace {

constexpr int DeepestNesting = 64;

} // namespace

JsonValue parseBoundedJson(const std::string& text, const std::string& name)
{
    const auto guard = [&](int depth, JsonValue::parse_event_t, JsonValue&) {
        if (depth > DeepestNesting)
            throw JsonError(name + " is nested too deeply");
        return true;
    };
    try {
        return JsonValue::parse(text, guard);
    } catch (const JsonValue::parse_error& error) { // its own text quotes the input
        throw JsonError(name + " is not JSON (byte " + std::to_string(error.byte) + ")");
    } catch (const JsonValue::out_of_range&) {
        throw JsonError(name + " is not JSON (a number is out of range)");
    }
}

} // namespace Host
