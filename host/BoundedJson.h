/// JSON that somebody else sends.
#pragma once

#include "host/PluginReply.h"

#include <stdexcept>
#include <string>

namespace Host {

/// The text cannot be read. The message does not repeat it, since it may hold passwords.
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a document nested at most 64 levels deep; `name` calls the text in messages: "the message". Throws
/// `JsonError`.
JsonValue parseBoundedJson(const std::string& text, const std::string& name);

} // namespace Host
