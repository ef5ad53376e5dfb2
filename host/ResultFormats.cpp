#include "host/ResultFormats.h"

#include "host/DisplayText.h"
#include "host/PluginReply.h"
#include "host/Table.h"
#include "host/Targets.h"

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

std::string joined(const std::vector<std::string>& texts)
{
    std::string result;
    for (const std::string& text : texts)
        result += (result.empty() ? "" : " ") + text;
    return result;
}

bool looksLikeFormula(std::string_view text)
{
    return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

/// Line ends stay, as RFC 4180 allows them within quotes.
std::string withoutControls(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t lineEnd = text.find_first_of("\r\n");
        result += printable(text.substr(0, lineEnd));
        text.remove_prefix(std::min(lineEnd, text.size()));
        if (!text.empty()) {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

std::string csvField(std::string_view text)
{
    const std::string field = (looksLikeFormula(text) ? "'" : "") + withoutControls(text);
    if (field.find_first_of("\",\r\n") == std::string::npos)
        return field;
    std::string result = "\"";
    for (const char character : field)
        result.append(character == '"' ? 2 : 1, character);
    return result + '"';
}

JsonValue document(const Printer& printer)
{
    return {{"hostname", printer.hostname},
            {"ip", printer.ip},
            {"mac", printer.mac},
            {"name", printer.name},
            {"sn", printer.sn}};
}

/// JSON writers leave DEL and the control characters U+0080 to U+009F as they are; terminals act on them. They can only
/// stand within strings.
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

} // namespace

std::string tableText(RunResult result)
{
    sortByAddress(result);
    Table table({"ADDRESS", "NAME", "SERIAL", "MAC", "HOST NAME"});
    for (const Printer& printer : result.printers)
        table.add({printer.ip, printer.name, printer.sn, joined(printer.mac), printer.hostname});
    return table.text();
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

std::string jsonText(RunResult result)
{
    sortByAddress(result);
    JsonValue printers = JsonValue::array();
    for (const Printer& printer : result.printers)
        printers.push_back(document(printer));
    JsonValue all = {{"step", result.step}, {"total", result.total}, {"state", result.state}};
    all["printers"] = std::move(printers);
    if (result.interrupted)
        all["interrupted"] = true;
    return withEscapedControls(all.dump()) + '\n';
}

std::string resultText(Format format, RunResult result)
{
    switch (format) {
    case Format::Json:
        return jsonText(std::move(result));
    case Format::Csv:
        return csvText(std::move(result));
    default:
        return tableText(std::move(result));
    }
}

} // namespace Host
