/// Runs as the documents that clients get.
#pragma once

#include "host/PluginReply.h"
#include "host/console/ConsoleRun.h"

namespace Host {

/// As docs/http.md has it. Long texts are cut.
JsonValue summaryDocument(const RunSummary& summary);

/// `text`, cut to what summaries have room for; they are fetched again and again.
std::string shortText(const std::string& text);

/// A JSON list of printers.
JsonValue printersDocument(const std::vector<Printer>& printers);

/// {"from":…,"to":…} for each of the first `most` ranges.
JsonValue rangesDocument(const AddressRanges& ranges, std::size_t most);

} // namespace Host
