#include "Kep/Exception.h"
#include "Kep/Json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Kep::Json {
namespace {

constexpr std::size_t maxDepth = 64;

// Of a key given twice the last value counts, at the place of the first.
Variant::Object withoutRepetitions(Variant::Object&& members)
{
    Variant::Object kept;
    kept.reserve(members.size()); // the keys of `places` point into it
    std::unordered_map<std::string_view, std::size_t> places;
    for (auto& [key, value] : members) {
        if (const auto known = places.find(key); known != places.end()) {
            kept[known->second].second = std::move(value);
        } else {
            kept.emplace_back(std::move(key), std::move(value));
            places.emplace(kept.back().first, kept.size() - 1);
        }
    }
    return kept;
}

// Where reading stopped, as the count of bytes read, and why. The reason holds nothing of the input.
struct Problem {
    std::size_t bytesRead = 0;
    std::string_view reason;
};

// Words of the library's reports and ours for them; the first that occurs counts.
constexpr std::pair<std::string_view, std::string_view> reasons[] = {
    {"invalid BOM", "malformed byte order mark"},
    {"number overflow", "number out of range"},
    {"missing closing quote", "text without closing quote"},
    {"control character", "control character in a text"},
    {"ill-formed UTF-8", "text that is not valid UTF-8"},
    {"surrogate", "unpaired surrogate in a text"},
    {"invalid string", "unknown escape in a text"},
    {"invalid number", "malformed number"},
    {"invalid literal", "unknown word or character"},
    {"unexpected end of input", "unexpected end"},
    {"; expected end of input", "something follows the document"},
    {"unexpected", "value or punctuation in the wrong place"},
};

// What the library reports quotes the input, from "last read" on.
std::string_view reasonFor(std::string_view report)
{
    const std::string_view unquoted = report.substr(0, report.find("last read"));
    for (const auto& [theirs, ours] : reasons) {
        if (unquoted.find(theirs) != std::string_view::npos) {
            return ours;
        }
    }
    return "malformed";
}

/// Builds the value while the library reads; the names are the library's.
class Builder final : public nlohmann::json_sax<nlohmann::json> {
public:
    Variant takeResult() { return std::move(result_); }
    bool tooDeep() const { return open_.size() > maxDepth; }
    const Problem& problem() const { return problem_; }

    bool null() override { return add(Variant()); }
    bool boolean(bool value) override { return add(Variant(value)); }
    bool number_integer(number_integer_t value) override { return add(Variant(value)); }
    bool number_float(number_float_t value, const string_t&) override { return add(Variant(value)); }
    bool string(string_t& value) override { return add(Variant(std::move(value))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(); }
    bool start_array(std::size_t) override { return open(); }

    bool number_unsigned(number_unsigned_t value) override
    {
        return value <= static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())
                   ? add(Variant(static_cast<std::int64_t>(value)))
                   : add(Variant(static_cast<double>(value)));
    }

    bool key(string_t& value) override
    {
        open_.back().key = std::move(value);
        return true;
    }

    bool end_object() override
    {
        Variant object(withoutRepetitions(std::move(open_.back().members)));
        open_.pop_back();
        return add(std::move(object));
    }

    bool end_array() override
    {
        Variant::Array elements;
        elements.reserve(open_.back().members.size());
        for (auto& member : open_.back().members) {
            elements.push_back(std::move(member.second));
        }
        open_.pop_back();
        return add(Variant(std::move(elements)));
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception& error) override
    {
        problem_ = {position, reasonFor(error.what())};
        return false;
    }

private:
    // An object or array that is not closed yet; an array's elements have no keys.
    struct Open {
        Variant::Object members;
        std::string key;
    };

    bool open()
    {
        open_.emplace_back();
        return !tooDeep();
    }

    bool add(Variant value)
    {
        if (open_.empty()) {
            result_ = std::move(value);
        } else {
            open_.back().members.emplace_back(std::move(open_.back().key), std::move(value));
        }
        return true;
    }

    std::vector<Open> open_;
    Variant result_;
    Problem problem_;
};

// Count of the bytes up to the bracket that opens one level too many, in a text that is sound so far.
std::size_t bytesUpToTooDeep(std::string_view text)
{
    std::size_t depth = 0;
    bool inString = false;
    std::size_t index = 0;
    for (; depth <= maxDepth && index < text.size(); ++index) {
        const char character = text[index];
        if (inString) {
            index += character == '\\' ? 1 : 0;
            inString = character != '"';
        } else if (character == '"') {
            inString = true;
        } else if (character == '[' || character == '{') {
            ++depth;
        } else if (character == ']' || character == '}') {
            --depth;
        }
    }
    return index;
}

// Lines end with LF. Columns count characters, and from 1, as lines do.
[[noreturn]] void throwSyntaxError(std::string_view text, const Problem& problem)
{
    const std::size_t at = problem.bytesRead == 0 ? 0 : std::min(problem.bytesRead - 1, text.size());
    const std::string_view before = text.substr(0, at);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineStart = before.rfind('\n') + 1; // 0 when there is none
    const auto column = 1 + std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineStart), before.end(),
                                          [](char byte) { return (byte & 0xC0) != 0x80; });
    throw GenericException("malformed JSON at line " + std::to_string(line) + ", column " + std::to_string(column) +
                           ": " + std::string(problem.reason));
}

} // namespace

Variant parse(std::string_view text)
{
    // The library takes a NUL for the end of the text.
    if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
        throwSyntaxError(text, {nul + 1, "NUL byte"});
    }
    Builder builder;
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) {
        throwSyntaxError(text, builder.tooDeep() ? Problem{bytesUpToTooDeep(text), "more than 64 levels of nesting"}
                                                 : builder.problem());
    }
    return builder.takeResult();
}

} // namespace Kep::Json
