#include "Kep/Variant.h"

#include "Kep/Exception.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace Kep {
namespace {

std::string_view kindName(VariantType type)
{
    switch (type) {
    case VariantType::null:
        return "nothing";
    case VariantType::boolean:
        return "boolean";
    case VariantType::integer:
    case VariantType::real:
        return "number";
    case VariantType::text:
        return "text";
    case VariantType::array:
        return "list";
    case VariantType::object:
        return "object";
    default:
        return "SNMP value";
    }
}

bool fitsInt(double number)
{
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max() &&
           number == std::trunc(number);
}

bool fitsInt(std::int64_t number)
{
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}

template <class Number> std::optional<int> toInt(const Number* number)
{
    return number != nullptr && fitsInt(*number) ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

const Variant* findMember(const Variant::Object& members, std::string_view key)
{
    const auto found = std::find_if(members.begin(), members.end(),
                                    [key](const Variant::Member& member) { return member.first == key; });
    return found == members.end() ? nullptr : &found->second;
}

} // namespace

Variant::Variant(bool value) : Variant(VariantType::boolean, value) {}
Variant::Variant(int value) : Variant(std::int64_t{value}) {}
Variant::Variant(std::int64_t value) : Variant(VariantType::integer, value) {}
Variant::Variant(double value) : Variant(VariantType::real, value) {}
Variant::Variant(const char* text) : Variant(std::string(text)) {}
Variant::Variant(std::string text) : Variant(VariantType::text, std::make_shared<const std::string>(std::move(text))) {}
Variant::Variant(Array elements) : Variant(VariantType::array, std::make_shared<const Array>(std::move(elements))) {}
Variant::Variant(Object members) : Variant(VariantType::object, std::make_shared<const Object>(std::move(members))) {}
Variant::Variant(VariantType type, Value value) : type_(type), value_(std::move(value)) {}

Variant Variant::snmp(VariantType kind, std::string text)
{
    return Variant(kind, std::make_shared<const std::string>(std::move(text)));
}

bool Variant::empty() const noexcept
{
    if (const auto* text = std::get_if<std::shared_ptr<const std::string>>(&value_)) {
        return (*text)->empty();
    }
    if (const auto* array = std::get_if<std::shared_ptr<const Array>>(&value_)) {
        return (*array)->empty();
    }
    if (const auto* object = std::get_if<std::shared_ptr<const Object>>(&value_)) {
        return (*object)->empty();
    }
    return isNull();
}

Variant Variant::operator[](const char* key) const
{
    const Variant* found = findMember(members(), key);
    return (found == nullptr ? Variant() : *found).named(key, *this);
}

bool Variant::contains(const std::string& key, Variant& out) const
{
    const Variant* found = findMember(members(), key);
    if (found != nullptr) {
        out = found->named(key, *this);
    }
    return found != nullptr;
}

Variant::operator int() const
{
    auto number = toInt(std::get_if<std::int64_t>(&value_));
    if (!number) {
        number = toInt(std::get_if<double>(&value_));
    }
    if (!number) {
        throwExpected("integer of 32 bits");
    }
    return *number;
}

Variant::operator bool() const
{
    const auto* value = std::get_if<bool>(&value_);
    if (value == nullptr) {
        throwExpected("boolean");
    }
    return *value;
}

Variant::operator std::string() const
{
    const auto* text = std::get_if<std::shared_ptr<const std::string>>(&value_);
    if (text == nullptr) {
        throwExpected("text");
    }
    return **text;
}

VariantIterator Variant::begin() const
{
    elements();
    return {*this, 0};
}

VariantIterator Variant::end() const
{
    return {*this, elements().size()};
}

const Variant::Array& Variant::elements() const
{
    const auto* array = std::get_if<std::shared_ptr<const Array>>(&value_);
    if (array == nullptr) {
        throwExpected("list");
    }
    return **array;
}

const Variant::Object& Variant::members() const
{
    const auto* object = std::get_if<std::shared_ptr<const Object>>(&value_);
    if (object == nullptr) {
        throwExpected("object");
    }
    return **object;
}

Variant Variant::named(std::string name, const Variant& parent) const
{
    Variant value = *this;
    value.member_ = std::move(name);
    value.where_ = parent.path();
    return value;
}

std::string Variant::path() const
{
    return where_.empty() || member_.empty() ? where_ + member_ : where_ + "." + member_;
}

void Variant::throwExpected(std::string_view expected) const
{
    std::string message = "document";
    if (!member_.empty()) {
        message = "member \"" + member_ + "\"";
    } else if (!where_.empty()) {
        message = "element \"" + where_ + "\"";
    }
    message += ": expected ";
    message += expected;
    message += ", found ";
    message += kindName(type_);
    if (!member_.empty() && !where_.empty()) {
        message += " (in \"" + where_ + "\")";
    }
    throw GenericException(message);
}

Variant VariantIterator::value() const
{
    Variant element = array_.elements()[index_];
    element.member_.clear();
    element.where_ = array_.path() + "[" + std::to_string(index_) + "]";
    return element;
}

} // namespace Kep
