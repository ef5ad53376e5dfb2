/// What became of each address, as text: a line for each that was probed, by ascending address.
#pragma once

#include "host/RunOutcomes.h"

#include <functional>
#include <string>
#include <string_view>

namespace Host {

enum class OutcomeFormat {
    Csv,       ///< RFC 4180, with a header line
    JsonLines, ///< {"ip":…,"outcome":…,"problem":…} on a line of its own
};

/// The format that the name of a file asks for by its end, .csv or .jsonl. Throws `UsageError` that begins with
/// `option` for any other.
OutcomeFormat outcomeFormatOf(std::string_view path, std::string_view option);

/// What stands before the first line; may be empty.
std::string outcomeHead(OutcomeFormat format);

/// The line of one address, with its end.
std::string outcomeLine(const RunOutcomes::Entry& entry, OutcomeFormat format);

/// Hands head and lines to `write`, some at a time. The whole may be long: about 40 bytes an address.
void writeOutcomes(const RunOutcomes& outcomes, OutcomeFormat format,
                   const std::function<void(std::string_view)>& write);

} // namespace Host
