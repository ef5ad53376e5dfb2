#include "host/OutcomeFormats.h"

#include "host/CsvField.h"
#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/ResultFormats.h"

namespace Host {

namespace {

constexpr std::size_t LinesAtOnce = 4096;

} // namespace

OutcomeFormat outcomeFormatOf(std::string_view path, std::string_view option)
{
    if (path.ends_with(".csv"))
        return OutcomeFormat::Csv;
    if (path.ends_with(".jsonl"))
        return OutcomeFormat::JsonLines;
    throw UsageError(std::string(option) + ": the name of " + inQuotes(path) +
                     " does not say in which form to write; names that end in .csv and .jsonl are accepted");
}

std::string outcomeHead(OutcomeFormat format)
{
    return format == OutcomeFormat::Csv ? "ip,outcome,problem\r\n" : "";
}

std::string outcomeLine(const RunOutcomes::Entry& entry, OutcomeFormat format)
{
    const std::string ip = addressText(entry.address);
    if (format == OutcomeFormat::Csv)
        return ip + ',' + std::string(nameOf(entry.outcome)) + ',' + csvField(entry.problem) + "\r\n";
    return jsonLine({{"ip", ip}, {"outcome", nameOf(entry.outcome)}, {"problem", entry.problem}});
}

void writeOutcomes(const RunOutcomes& outcomes, OutcomeFormat format,
                   const std::function<void(std::string_view)>& write)
{
    write(outcomeHead(format));
    const auto all = [](AddressOutcome) { return true; };
    for (auto entries = outcomes.list(0, LinesAtOnce, all); !entries.empty();
         entries = outcomes.list(entries.back().address + 1, LinesAtOnce, all)) {
        std::string lines;
        for (const RunOutcomes::Entry& entry : entries)
            lines += outcomeLine(entry, format);
        write(lines);
    }
}

} // namespace Host
