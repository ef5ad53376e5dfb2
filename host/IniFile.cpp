#include "host/IniFile.h"

#include "host/Errors.h"
#include "host/TextFile.h"

#include <algorithm>

namespace Host {

namespace {

[[noreturn]] void refuse(const std::string& name, std::size_t line, const std::string& why)
{
    throw UsageError(name + ':' + std::to_string(line) + ": " + why);
}

std::string_view unquoted(std::string_view value)
{
    const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    return quoted ? value.substr(1, value.size() - 2) : value;
}

class IniReader {
public:
    explicit IniReader(const std::string& name) : name_(name) {}

    void take(std::string_view line, std::size_t number)
    {
        line = trimmed(line);
        if (line.empty() || line.front() == '#' || line.front() == ';')
            return;
        if (line.front() == '[')
            begin(line, number);
        else
            enter(line, number);
    }

    std::vector<IniSection> sections() && { return std::move(sections_); }

private:
    void begin(std::string_view line, std::size_t number)
    {
        const std::string_view section = line.back() == ']' ? trimmed(line.substr(1, line.size() - 2)) : "";
        if (section.empty())
            refuse(name_, number, "a section is [NAME]");
        if (std::any_of(sections_.begin(), sections_.end(), [&](const auto& other) { return other.name == section; }))
            refuse(name_, number, "there is a section of this name already");
        sections_.push_back({std::string(section), number, {}});
    }

    void enter(std::string_view line, std::size_t number)
    {
        const auto equals = line.find('=');
        const std::string_view key = trimmed(line.substr(0, equals));
        if (equals == std::string_view::npos || key.empty())
            refuse(name_, number, "neither KEY = VALUE nor [NAME] nor a comment");
        if (sections_.empty())
            refuse(name_, number, "a section has to begin first: [NAME]");
        auto& entries = sections_.back().entries;
        if (std::any_of(entries.begin(), entries.end(), [&](const auto& other) { return other.key == key; }))
            refuse(name_, number, "the section has this key already");
        entries.push_back({std::string(key), std::string(unquoted(trimmed(line.substr(equals + 1)))), number});
    }

    const std::string& name_;
    std::vector<IniSection> sections_;
};

} // namespace

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::vector<IniSection> parseIni(std::string_view text, const std::string& name)
{
    IniReader reader(name);
    forEachLine(text, [&](std::string_view line, std::size_t number) { reader.take(line, number); });
    return std::move(reader).sections();
}

} // namespace Host
