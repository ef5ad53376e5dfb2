#include "host/console/RunDocuments.h"

#include "host/DisplayText.h"
#include "host/PrinterDocument.h"
#include "host/console/Times.h"

#include <algorithm>

namespace Host {

namespace {

constexpr std::size_t LongestText = 2000; // bytes; no character is cut

const char* nameOf(RunState state)
{
    switch (state) {
    case RunState::Running:
        return "running";
    case RunState::Stopping:
        return "stopping";
    case RunState::Stopped:
        return "stopped";
    case RunState::Finished:
        return "finished";
    case RunState::Failed:
        break;
    }
    return "failed";
}

JsonValue countsDocument(const OutcomeCounts& counts)
{
    JsonValue document = JsonValue::object();
    for (std::size_t i = AddressOutcomes; i-- > 0;)
        document[std::string(nameOf(static_cast<AddressOutcome>(i)))] = counts.of.at(i);
    return document;
}

} // namespace

std::string shortText(const std::string& text)
{
    if (text.size() <= LongestText)
        return text;
    std::size_t end = LongestText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    return text.substr(0, end) + "\u2026";
}

JsonValue summaryDocument(const RunSummary& summary)
{
    return {{"id", summary.id},
            {"name", summary.name},
            {"targets", shortText(summary.targets)},
            {"exclude", shortText(summary.exclude)},
            {"port", summary.port},
            {"credentials", summary.credentials},
            {"started", isoTime(summary.started)},
            {"finished", summary.finished ? JsonValue(isoTime(*summary.finished)) : JsonValue()},
            {"state", nameOf(summary.state)},
            {"message", summary.message},
            {"step", summary.step},
            {"total", summary.total},
            {"found", summary.found},
            {"outcomes", countsDocument(summary.outcomes)},
            {"kept", summary.kept},
            {"schedule", summary.schedule.empty() ? JsonValue() : JsonValue(summary.schedule)}};
}

JsonValue printersDocument(const std::vector<Printer>& printers)
{
    JsonValue document = JsonValue::array();
    for (const Printer& printer : printers)
        document.push_back(documentOf(printer));
    return document;
}

JsonValue rangesDocument(const AddressRanges& ranges, std::size_t most)
{
    JsonValue document = JsonValue::array();
    for (const AddressRange& range : ranges) {
        if (document.size() == most)
            break;
        document.push_back({{"from", addressText(range.from)}, {"to", addressText(range.to)}});
    }
    return document;
}

} // namespace Host
