/// What `discover` is asked to do, checked: the documents for the plug-in and the form of the result.
#pragma once

#include "host/Arguments.h"
#include "host/ResultFormats.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Host {

constexpr const char* OutcomesOption = "--outcomes";

struct DiscoverOptions {
    AddressRanges ranges;                        ///< to sweep, as `planTargets` gives them
    std::vector<JsonValue> profiles;             ///< members "snmpProfile"; a run with each
    std::map<std::string, std::string> settings; ///< host settings for this command alone
    Format format = Format::Table;
    bool stream = false; ///< printers as lines of JSON while they are found
    bool quiet = false;  ///< nothing on standard error but errors
    bool dryRun = false;
    std::optional<std::string> outcomes;  ///< file for what became of each address; its name says in which form
    std::optional<EarlierResult> earlier; ///< to compare with
};

/// Throws `UsageError` that names the argument and says what is accepted. `defaults` are credentials that count where
/// the options give none. Sends nothing and loads nothing.
DiscoverOptions readDiscoverOptions(const DiscoverArguments& arguments, const Credentials& defaults,
                                    const TargetSources& sources);

/// The document that starts a run of `options` with one of its profiles under `cookie`. Throws `UsageError` for texts
/// that are not UTF-8.
std::string startDocument(const DiscoverOptions& options, const JsonValue& profile, const std::string& cookie);

/// What a run is about to do, for people: "508 addresses to probe, with each of 2 credentials".
std::string countText(std::uint64_t addresses, std::size_t credentials);

/// What would be swept, in the form of `options`: {"ranges":[{"from":…,"to":…}…],"addresses":…,"credentials":…}, or a
/// range a line and the count as a comment, which is a list of targets again.
std::string dryRunText(const DiscoverOptions& options);

/// The plug-in's configuration document; an empty `dataStore` is left out.
std::string initDocument(const std::string& dataStore, const std::map<std::string, std::string>& settings);

} // namespace Host
