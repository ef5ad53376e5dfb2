#include "Kep/Json.h"
#include "Kep/Variant.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Kep {
namespace {

// The shortest form that reads back as the same number, and as one with a fraction.
std::string realToJson(double number)
{
    if (!std::isfinite(number)) {
        return "null";
    }
    std::array<char, 32> buffer; // the longest is 24 characters
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    std::string text(buffer.data(), result.ptr);
    if (text.find_first_of(".e") == std::string::npos) {
        text += ".0";
    }
    return text;
}

std::string elementsToJson(const Variant::Array& elements)
{
    Json::Array array;
    for (const Variant& element : elements) {
        array.addJson(element.toJson());
    }
    return array.toJson();
}

std::string membersToJson(const Variant::Object& members)
{
    Json::Object object;
    for (const auto& [key, value] : members) {
        object.addJson(key, value.toJson());
    }
    return object;
}

} // namespace

std::string Variant::toJson() const
{
    switch (type_) {
    case VariantType::null:
        return "null";
    case VariantType::boolean:
        return std::get<bool>(value_) ? "true" : "false";
    case VariantType::integer:
        return std::to_string(std::get<std::int64_t>(value_));
    case VariantType::real:
        return realToJson(std::get<double>(value_));
    case VariantType::array:
        return elementsToJson(elements());
    case VariantType::object:
        return membersToJson(members());
    case VariantType::snmpInteger:
    case VariantType::snmpCounter32:
    case VariantType::snmpGauge32:
    case VariantType::snmpTimeTicks:
    case VariantType::snmpCounter64:
        return *std::get<std::shared_ptr<const std::string>>(value_);
    default:
        return Json::_encodeString(*std::get<std::shared_ptr<const std::string>>(value_));
    }
}

} // namespace Kep
