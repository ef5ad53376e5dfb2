/// A run's result as text: a table for people, CSV for spreadsheets, JSON for programs.
///
/// All three list the printers by ascending address.
#pragma once

#include "host/Comparison.h"
#include "host/PluginReply.h"
#include "host/RunResult.h"
#include "host/TextStyle.h"

#include <optional>
#include <string>

namespace Host {

enum class Format { Table, Json, Csv };

/// Columns aligned as a terminal shows them, one line a printer; texts of devices are printable (DisplayText.h), and
/// cut where a line would be wider than the style allows.
std::string tableText(RunResult result, const TextStyle& style = {});

/// RFC 4180, with the header line ip,name,sn,mac,hostname and fields as `csvField` gives them; several MAC addresses
/// are separated by blanks.
std::string csvText(RunResult result);

/// One line: {"step":…,"total":…,"state":…,"printers":[{"hostname":…,"ip":…,"mac":[…],"name":…,"sn":…}]}, then
/// "interrupted":true when the run was, and "diff" with the comparison if there is one. Control characters are
/// escaped.
std::string jsonText(RunResult result, const std::optional<Comparison>& comparison = {});

/// The line that ends a stream of printers: as `jsonText`, but in place of "printers" is "found", their number.
std::string streamEnd(const RunResult& result, const std::optional<Comparison>& comparison = {});

/// A document on a line of its own. JSON writers leave DEL and the control characters U+0080 to U+009F as they are;
/// terminals act on them, so they are escaped too.
std::string jsonLine(const JsonValue& document);

} // namespace Host
