#include "Kep/Json.h"

#include "base/Utf8.h"

namespace Kep::Json {
namespace {

void appendControl(std::string& out, unsigned char character)
{
    static constexpr std::string_view shortForms = "btn fr"; // of U+0008 to U+000D; a blank where there is none
    static constexpr std::string_view digits = "0123456789abcdef";
    const char shortForm = character >= 0x08 && character <= 0x0D ? shortForms[character - 0x08u] : ' ';
    if (shortForm != ' ') {
        out += {'\\', shortForm};
        return;
    }
    out += "\\u00";
    out += {digits[character >> 4], digits[character & 0x0Fu]};
}

void appendLatin1(std::string& out, unsigned char character)
{
    out += static_cast<char>(0xC0 | (character >> 6));
    out += static_cast<char>(0x80 | (character & 0x3F));
}

// Takes the closing bracket off, and separates the next item from one that precedes.
void openForItem(std::string& text)
{
    text.pop_back();
    if (text.size() > 1) {
        text += ',';
    }
}

std::string_view orNull(const std::string& json)
{
    return json.empty() ? std::string_view("null") : std::string_view(json);
}

} // namespace

std::string _encodeString(std::string_view text)
{
    std::string out = "\"";
    out.reserve(text.size() + 2);
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0) {
            appendLatin1(out, first);
        } else if (first < 0x20) {
            appendControl(out, first);
        } else {
            if (first == '"' || first == '\\') {
                out += '\\';
            }
            out += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    out += '"';
    return out;
}

Object::Object() : text_("{}") {}
Object::~Object() = default;

void Object::prepareAdd()
{
    openForItem(text_);
}

void Object::append(std::string_view text)
{
    text_ += text;
}

void Object::add(std::string_view key, std::string_view value)
{
    addJson(key, _encodeString(value));
}

void Object::addJson(std::string_view key, const std::string& json)
{
    prepareAdd();
    append(_encodeString(key));
    append(":");
    append(orNull(json));
    append("}");
}

Object::operator std::string() const
{
    return text_;
}

Array::Array() : text_("[]") {}
Array::~Array() = default;

void Array::prepareAdd()
{
    openForItem(text_);
}

void Array::append(std::string_view text)
{
    text_ += text;
}

void Array::addJson(const std::string& json)
{
    prepareAdd();
    append(orNull(json));
    append("]");
}

std::string Array::toJson() const
{
    return text_;
}

} // namespace Kep::Json
