#include "tests/network/harness/Recording.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace fs = std::filesystem;

namespace NetworkTests {
namespace {

constexpr char deviceTypeColumn[] = "1.3.6.1.2.1.25.3.2.1.2.";
constexpr char printerType[] = "1.3.6.1.2.1.25.3.1.5";
constexpr char description[] = "1.3.6.1.2.1.25.3.2.1.3.1";
const std::vector<std::string> physicalAddresses = {"1.3.6.1.2.1.2.2.1.6.1", "1.3.6.1.2.1.2.2.1.6.2"};
const std::vector<std::string> serialNumbers = {"1.3.6.1.2.1.43.5.1.1.17.1", "1.3.6.1.4.1.1347.43.5.1.1.28.1",
                                                "1.3.6.1.4.1.367.3.2.1.2.1.4.0"};

std::string fromHexadecimal(const std::string& text)
{
    std::string bytes;
    for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(text.substr(at, 2), nullptr, 16));
    }
    return bytes;
}

std::string macText(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes) {
        std::array<char, 4> pair = {};
        std::snprintf(pair.data(), pair.size(), "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        text += (text.empty() ? "" : "-") + std::string(pair.data());
    }
    return text;
}

bool isContinuation(unsigned char byte, unsigned char low = 0x80, unsigned char high = 0xBF)
{
    return byte >= low && byte <= high;
}

/// The length of the well-formed UTF-8 sequence at the start of `text`; 0 when there is none.
std::size_t utf8Length(std::string_view text)
{
    const auto byte = [&](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : static_cast<unsigned char>(0);
    };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return isContinuation(byte(1)) ? 2 : 0;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        const bool second = isContinuation(byte(1), first == 0xE0 ? 0xA0 : 0x80, first == 0xED ? 0x9F : 0xBF);
        return second && isContinuation(byte(2)) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool second = isContinuation(byte(1), first == 0xF0 ? 0x90 : 0x80, first == 0xF4 ? 0x8F : 0xBF);
        return second && isContinuation(byte(2)) && isContinuation(byte(3)) ? 4 : 0;
    }
    return 0;
}

std::string latin1Character(unsigned char byte)
{
    return {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
}

} // namespace

Recording::Recording(const fs::path& file) : file_(file)
{
    std::ifstream lines(file, std::ios::binary);
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t first = line.find('|');
        const std::size_t second = line.find('|', first + 1);
        if (first == std::string::npos || second == std::string::npos) {
            throw std::runtime_error(file.string() + " has a line that is none of a recording: " + line);
        }
        entries_[line.substr(0, first)] = {line.substr(first + 1, second - first - 1), line.substr(second + 1)};
    }
    if (entries_.empty()) {
        throw std::runtime_error(file.string() + " holds nothing");
    }
}

bool Recording::isPrinter() const
{
    return std::any_of(entries_.begin(), entries_.end(), [](const auto& entry) {
        const auto& [oid, value] = entry;
        return oid.starts_with(deviceTypeColumn) && value.type == "6" && value.text == printerType;
    });
}

std::string Recording::value(const std::string& oid) const
{
    const auto found = entries_.find(oid);
    if (found == entries_.end()) {
        return "";
    }
    const auto& [type, text] = found->second;
    if (type == "4x") {
        return fromHexadecimal(text);
    }
    static const std::vector<std::string> plain = {"2", "4", "65", "66", "67", "70"};
    if (std::find(plain.begin(), plain.end(), type) == plain.end()) {
        throw std::runtime_error(file_.string() + ": the value of " + oid + " has an unexpected type " + type);
    }
    return text;
}

std::string Recording::firstOf(const std::vector<std::string>& oids) const
{
    for (const std::string& oid : oids) {
        if (const std::string found = value(oid); !found.empty()) {
            return found;
        }
    }
    return "";
}

Document Recording::record(const std::string& address) const
{
    Document macs = Document::array();
    for (const std::string& oid : physicalAddresses) {
        if (const std::string bytes = value(oid); bytes.size() == 6) {
            macs.push_back(macText(bytes));
        }
    }
    return printerRecord(address, jsonText(value(description)), macs, jsonText(firstOf(serialNumbers)));
}

std::string jsonText(const std::string& bytes)
{
    std::string text;
    std::size_t at = 0;
    while (at < bytes.size()) {
        const std::size_t length = utf8Length(std::string_view(bytes).substr(at));
        text += length == 0 ? latin1Character(static_cast<unsigned char>(bytes[at])) : bytes.substr(at, length);
        at += std::max<std::size_t>(length, 1);
    }
    return text;
}

std::vector<fs::path> recordingsIn(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".snmprec") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace NetworkTests
