/// The members of an object in a request's body, read strictly.
#pragma once

#include "host/PluginReply.h"

#include <optional>
#include <string>
#include <vector>

namespace Host {

/// Members are asked for by name; an absent one and null are nothing. All functions throw `HttpError` with status 400
/// that names the member and never repeats a value.
class JsonBody {
public:
    /// The object that the text of a request holds.
    explicit JsonBody(const std::string& text);

    /// An object within another; `place` begins messages, "credentials 2: ", and failures count as those of `field`.
    JsonBody(JsonValue object, std::string place, std::string field);

    std::optional<std::string> text(const char* key);
    bool flag(const char* key);
    std::optional<int> integer(const char* key, int from, int to);
    std::vector<JsonBody> objects(const char* key);

    /// Refuses members that nobody asked for: a misspelt one would silently be without effect.
    void refuseOthers() const;

private:
    const JsonValue* find(const char* key);
    [[noreturn]] void refuse(const char* key, const std::string& expected) const;

    JsonValue object_;
    std::string place_;
    std::string field_;
    std::vector<std::string> asked_;
};

} // namespace Host
