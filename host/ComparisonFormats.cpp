#include "host/ComparisonFormats.h"

#include "host/DisplayText.h"
#include "host/PrinterDocument.h"

namespace Host {

namespace {

std::string described(const Printer& printer)
{
    std::string text = printable(printer.ip);
    for (const std::string& each : {printer.name, printer.sn})
        text += each.empty() ? "" : "  " + printable(each);
    return text;
}

std::string describedChange(const PrinterPair& pair)
{
    std::string text = printable(pair.now.ip);
    for (const Difference& difference : differencesOf(pair))
        text += std::string("  ") + difference.member + ' ' + inQuotes(difference.before) + " -> " +
                inQuotes(difference.now);
    return text;
}

std::string counts(const Comparison& comparison)
{
    return std::to_string(comparison.added.size()) + " new, " + std::to_string(comparison.gone.size()) + " gone, " +
           std::to_string(comparison.moved.size()) + " moved, " + std::to_string(comparison.changed.size()) +
           " changed, " + std::to_string(comparison.same) + " the same";
}

JsonValue documentsOf(const std::vector<Printer>& printers)
{
    JsonValue documents = JsonValue::array();
    for (const Printer& printer : printers)
        documents.push_back(documentOf(printer));
    return documents;
}

JsonValue fromTo(const std::string& from, const std::string& to)
{
    return {{"from", from}, {"to", to}};
}

JsonValue changeOf(const PrinterPair& pair)
{
    JsonValue document = {{"ip", pair.now.ip}};
    for (const Difference& difference : differencesOf(pair))
        document[difference.member] = fromTo(difference.before, difference.now);
    return document;
}

} // namespace

std::string comparisonText(const Comparison& comparison, const std::string& name, const TextStyle& style)
{
    std::string text = "Compared with " + printable(name) + ": " + counts(comparison) + '\n';
    const auto add = [&](const std::string& line, Emphasis emphasis) {
        text += emphasised(line, emphasis, style) + '\n';
    };
    for (const Printer& printer : comparison.added)
        add("+ " + described(printer), Emphasis::Good);
    for (const Printer& printer : comparison.gone)
        add("- " + described(printer), Emphasis::Bad);
    for (const PrinterPair& pair : comparison.moved)
        add("> " + printable(pair.before.ip) + " -> " + described(pair.now), Emphasis::Notable);
    for (const PrinterPair& pair : comparison.changed)
        add("~ " + describedChange(pair), Emphasis::Notable);
    return text;
}

JsonValue comparisonDocument(const Comparison& comparison)
{
    JsonValue moved = JsonValue::array();
    for (const PrinterPair& pair : comparison.moved)
        moved.push_back(fromTo(pair.before.ip, pair.now.ip));
    JsonValue changed = JsonValue::array();
    for (const PrinterPair& pair : comparison.changed)
        changed.push_back(changeOf(pair));
    return {{"new", documentsOf(comparison.added)},
            {"gone", documentsOf(comparison.gone)},
            {"moved", moved},
            {"changed", changed},
            {"same", comparison.same}};
}

} // namespace Host
