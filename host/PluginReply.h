/// Reads what the plug-in answers.
#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace Host {

using JsonValue = nlohmann::ordered_json; // members stay in the order of the text

/// A failed call: what the plug-in says about it.
struct PluginError {
    std::string code; ///< "notFound" or "internalServerError"
    std::string message;
};

/// A reply as a document. Throws `Failure` when it is not JSON.
JsonValue parseReply(const std::string& reply);

/// The error that `reply` reports. Only the reply of a failed call is an object with all of the members "code",
/// "message", "data" and "operation".
std::optional<PluginError> errorOf(const JsonValue& reply);

/// Tests the plug-in's reply to its configuration. Throws `Failure` with the plug-in's own words when it refused the
/// configuration or a service of it did not start.
void requireStarted(const std::string& reply);

} // namespace Host
