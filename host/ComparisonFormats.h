/// A comparison of two runs as text and as a document.
#pragma once

#include "host/Comparison.h"
#include "host/PluginReply.h"
#include "host/TextStyle.h"

#include <string>

namespace Host {

/// A line of counts, then a line for each printer: `+` new, `-` gone, `>` moved, `~` changed. `name` calls the earlier
/// result. Texts of devices are printable (DisplayText.h).
std::string comparisonText(const Comparison& comparison, const std::string& name, const TextStyle& style);

/// {"new":[PRINTER…],"gone":[PRINTER…],"moved":[{"from":…,"to":…}],"changed":[{"ip":…,MEMBER:{"from":…,"to":…}}],
/// "same":…}; a PRINTER is as in the member "printers" of `jsonText`, and a MEMBER one of "name", "sn", "mac" and
/// "hostname" that has changed, of several MAC addresses joined by blanks.
JsonValue comparisonDocument(const Comparison& comparison);

} // namespace Host
