/// A run's result as text: a table for people, CSV for spreadsheets, JSON for programs.
///
/// All three list the printers by ascending address.
#pragma once

#include "host/RunResult.h"

#include <string>

namespace Host {

enum class Format { Table, Json, Csv };

/// Columns aligned as a terminal shows them, one line a printer; texts of devices are printable (DisplayText.h).
std::string tableText(RunResult result);

/// RFC 4180, with the header line ip,name,sn,mac,hostname; several MAC addresses are separated by blanks. A text that
/// a spreadsheet would take for a formula (it begins with = + - @, a tab or a carriage return) gets an apostrophe in
/// front; control characters other than line ends become \xNN.
std::string csvText(RunResult result);

/// One line: {"step":…,"total":…,"state":…,"printers":[{"hostname":…,"ip":…,"mac":[…],"name":…,"sn":…}]}, and
/// "interrupted":true at the end when the run was. Control characters are escaped.
std::string jsonText(RunResult result);

std::string resultText(Format format, RunResult result);

} // namespace Host
