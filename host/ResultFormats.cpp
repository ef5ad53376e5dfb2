#include "host/ResultFormats.h"

#include "host/Addresses.h"
#include "host/ComparisonFormats.h"
#include "host/CsvField.h"
#include "host/DisplayText.h"
#include "host/PrinterDocument.h"
#include "host/Table.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace Host {

namespace {

/// What is no address comes first, in the order found.
std::uint32_t sortKey(const Printer& printer)
{
    return parseAddress(printer.ip).value_or(0);
}

void sortByAddress(RunResult& result)
{
    std::stable_sort(result.printers.begin(), result.printers.end(),
                     [](const Printer& a, const Printer& b) { return sortKey(a) < sortKey(b); });
}

constexpr std::size_t WholeMac = 18; // columns of one address and the sign that there are more

/// They can only stand within strings.
std::string withEscapedControls(const std::string& json)
{
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const bool highControl =
            json[i] == '\xC2' && i + 1 < json.size() && static_cast<unsigned char>(json[i + 1]) < 0xA0;
        if (!highControl && json[i] != '\x7F') {
            result += json[i];
            continue;
        }
        const auto code = static_cast<unsigned char>(json[highControl ? ++i : i]);
        result += "\\u00";
        result += digits[code >> 4U];
        result += digits[code & 0xFU];
    }
    return result;
}

JsonValue headOf(const RunResult& result)
{
    return {{"step", result.step}, {"total", result.total}, {"state", result.state}};
}

std::string withTail(JsonValue document, const RunResult& result, const std::optional<Comparison>& comparison)
{
    if (result.interrupted)
        document["interrupted"] = true;
    if (comparison)
        document["diff"] = comparisonDocument(*comparison);
    return jsonLine(document);
}

} // namespace

std::string tableText(RunResult result, const TextStyle& style)
{
    sortByAddress(result);
    Table table({"ADDRESS", "NAME", "SERIAL", "MAC", "HOST NAME"}, {0, 8, 8, WholeMac, 9});
    for (const Printer& printer : result.printers)
        table.add({printer.ip, printer.name, printer.sn, joined(printer.mac), printer.hostname});
    return table.text(style);
}

std::string csvText(RunResult result)
{
    sortByAddress(result);
    std::string text = "ip,name,sn,mac,hostname\r\n";
    for (const Printer& printer : result.printers)
        text += csvField(printer.ip) + ',' + csvField(printer.name) + ',' + csvField(printer.sn) + ',' +
                csvField(joined(printer.mac)) + ',' + csvField(printer.hostname) + "\r\n";
    return text;
}

std::string jsonText(RunResult result, const std::optional<Comparison>& comparison)
{
    sortByAddress(result);
    JsonValue document = headOf(result);
    JsonValue printers = JsonValue::array();
    for (const Printer& printer : result.printers)
        printers.push_back(documentOf(printer));
    document["printers"] = std::move(printers);
    return withTail(std::move(document), result, comparison);
}

std::string streamEnd(const RunResult& result, const std::optional<Comparison>& comparison)
{
    JsonValue document = headOf(result);
    document["found"] = result.printers.size();
    return withTail(std::move(document), result, comparison);
}

std::string jsonLine(const JsonValue& document)
{
    return withEscapedControls(document.dump()) + '\n';
}

} // namespace Host
