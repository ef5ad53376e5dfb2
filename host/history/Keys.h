/// Places in the data store that ascend with time.
#pragma once

#include "host/PluginReply.h"

#include <chrono>
#include <string>

namespace Host {

/// The last word of a key: the time, in milliseconds, and an id of letters, digits and hyphens.
std::string placeOf(std::chrono::system_clock::time_point time, const std::string& id);

/// Whether a word is such a place.
bool isPlace(const std::string& place);

/// What stands in a place. Both require one.
std::chrono::system_clock::time_point timeOf(const std::string& place);
std::string idOf(const std::string& place);

/// A document as the data store keeps it. Bytes that are not UTF-8 are replaced.
std::string textOf(const JsonValue& document);

} // namespace Host
