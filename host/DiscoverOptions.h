/// What `discover` is asked to do, checked: the documents for the plug-in and the form of the result.
#pragma once

#include "host/Arguments.h"
#include "host/ResultFormats.h"

#include <map>
#include <string>
#include <vector>

namespace Host {

struct DiscoverOptions {
    JsonValue config;                            ///< the member "config" of a start request
    std::map<std::string, std::string> settings; ///< host settings for this run alone
    Format format = Format::Table;
    std::vector<std::string> secrets; ///< those that stand in `config`
};

/// Throws `UsageError` that names the argument and says what is accepted. Sends nothing and loads nothing.
DiscoverOptions readDiscoverOptions(const DiscoverArguments& arguments, const SnmpEnvironment& environment);

/// The document that starts the run of `config` under `cookie`. Throws `UsageError` for texts that are not UTF-8.
std::string startDocument(const JsonValue& config, const std::string& cookie);

/// The plug-in's configuration document; an empty `dataStore` is left out.
std::string initDocument(const std::string& dataStore, const std::map<std::string, std::string>& settings);

} // namespace Host
