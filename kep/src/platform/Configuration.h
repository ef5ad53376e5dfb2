/// What a host tells a plug-in when it initialises it.
#pragma once

#include <map>
#include <string>

namespace Kep {

/// The configuration document, read: {"dataStore":path,"settings":{key:text|number|boolean,...}}, both optional.
struct Configuration {
    std::string dataStorePath; ///< UTF-8; empty: no data store
    std::map<std::string, std::string>
        settings; ///< host settings by their data-store keys, numbers and switches as texts
};

/// Reads the document; an empty text counts as an empty one. Throws `GenericException` that says what is wrong,
/// members that are not known and settings that are none of the host's or do not fit included. Any thread.
Configuration readConfiguration(const std::string& document);

/// The host settings that hold under `configuration`: those of its data store, and over them its own. Throws
/// `GenericException` when the store cannot be used. Any thread.
std::map<std::string, std::string> effectiveHostSettings(const Configuration& configuration);

} // namespace Kep
